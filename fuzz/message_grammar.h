// Whole messages that the fuzzer's bytes choose step by step: fields, types, encodings, boundaries,
// line ends, nesting, and texts that reach over the ends of the MIME library's buffer.
#pragma once

#include <string>
#include <string_view>

namespace zqv::fuzz {

// The message that `choices` spell; at most a little over 64 KB. Without choices left, each takes
// its first alternative, so that every message comes to an end.
std::string MakeMessage(std::string_view choices);

}  // namespace zqv::fuzz
