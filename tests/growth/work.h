// Uses an input through the built library as an application does, and counts the work. The input is
// given to the host before counting starts.
//
// Each function returns the text of the exception that a constructor raised; empty when none was.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "tests/growth/meter.h"

namespace zqv::growth {

using Work = std::string (*)(const std::string& input, Meter& meter);

// Phases: construct, read (every member once), strip (SourceWithoutAttachments), release.
std::string UseMessage(const std::string& input, Meter& meter);

// The shared methods. Phase: call.
std::string UseDecodeInline(const std::string& input, Meter& meter);
std::string UseHtmlToPlainText(const std::string& input, Meter& meter);

// The classes that are made from text. Phases: construct, read, release.
std::string UseMailbox(const std::string& input, Meter& meter);
std::string UseGroup(const std::string& input, Meter& meter);
std::string UseAddress(const std::string& input, Meter& meter);
std::string UseMailboxList(const std::string& input, Meter& meter);
std::string UseAddressList(const std::string& input, Meter& meter);
std::string UseField(const std::string& input, Meter& meter);

// The names of all phases, and of all together.
const std::vector<std::string_view>& PhaseNames();

}  // namespace zqv::growth
