// Makes whole messages, step by step, from the bytes of the fuzzer: fields, types, encodings,
// boundaries, line ends, nesting, and texts that extend over the ends of mimetic's buffer.
#pragma once

#include <string>
#include <string_view>

namespace zqv::fuzz {

// The message that `choices` select, of at most a little more than 64 KB. When all choices are
// used, each further choice takes its first alternative, so that every message ends.
std::string MakeMessage(std::string_view choices);

}  // namespace zqv::fuzz
