// Iterates over the messages of a request.
#pragma once

#include <functional>
#include <string>

#include "cli/output.h"
#include "cli/session.h"
#include "cli/verbs.h"
#include "cli/workers.h"

namespace zqv::cli {

// Calls `visit` for each message of the request that passes its filter, or only for the one with
// the request's number. Joins messages that were sent in pieces. `visit` returns false to stop.
// False when an input could not be read or there is no message with that number, which has then
// been reported.
bool ForEachChosen(const Session& session, const Request& request, const VisitItem& visit);

// Convert an unparsed message to the form in which it is sent to another process, and back.
Parcel ParcelOf(const Item& item);
Item ItemOf(const Parcel& parcel);

// Handles one message. `name` is the message's name for a reader. Returns false when something
// failed, which it has then reported.
using Visit = std::function<bool(const std::string& name, const standin::Object& email)>;

// Whether a message also gets a heading when nothing is printed below it.
enum class Headings { kAlways, kAboveSomething };

// Opens each message of the request and calls `visit`. If there are several, prints a heading
// before each, except in JSON, which contains the message's name. A failure of one message is
// reported and does not stop the others. With Request::message, only that message is visited; it
// counts over all inputs. Returns the exit code: 0, or 1 when anything failed.
int ForEachMessage(const Session& session, const Request& request, Output* output,
                   const Visit& visit, Headings headings = Headings::kAlways);

// Does the same for a verb that works on one message only. If there are several, it reports an
// error that ends with `advice` and visits none.
int ForOneMessage(const Session& session, const Request& request, const Visit& visit,
                  const char* advice = "");

}  // namespace zqv::cli
