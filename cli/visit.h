// Goes through the messages that a verb was given.
#pragma once

#include <functional>
#include <string>

#include "cli/output.h"
#include "cli/session.h"
#include "cli/verbs.h"
#include "cli/workers.h"

namespace zqv::cli {

// Hands out the messages of a request that pass its filter, or the one that it chooses by its
// number. `visit` gives false to end it. False when an input could not be read or the message is
// not there, which has been said.
bool ForEachChosen(const Session& session, const Request& request, const VisitItem& visit);

// A message that has not been parsed yet as work for another process, and back.
Parcel ParcelOf(const Item& item);
Item ItemOf(const Parcel& parcel);

// What a verb does with one message; false when it could not do all of it, having said why. `name`
// is the message's for people.
using Visit = std::function<bool(const std::string& name, const standin::Object& email)>;

// Whether a message about which nothing is printed has its heading, too.
enum class Headings { kAlways, kAboveSomething };

// Opens the messages one after the other and visits each, below a heading when there are several
// and JSON is not wanted, which names its message itself. What goes wrong with one is said and does
// not keep the others from being visited. With the request's `message` only that one is visited,
// counted from 1 over all inputs. The exit code: 0, or 1 when anything went wrong.
int ForEachMessage(const Session& session, const Request& request, Output* output,
                   const Visit& visit, Headings headings = Headings::kAlways);

// For what is done with one message: refuses several before anything is done, and says `advice`
// then, too.
int ForOneMessage(const Session& session, const Request& request, const Visit& visit,
                  const char* advice = "");

}  // namespace zqv::cli
