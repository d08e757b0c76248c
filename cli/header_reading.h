// What the texts of header fields say to a reader, from the bytes of the message. Other than the
// library, which decodes words in upper case alone and all of them in one charset.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace zqv::cli {

// A field's value as UTF-8 on one line: folds are blanks, the encoded words of RFC 2047 are
// decoded, also with a lower-case letter, with a language (RFC 2231, section 5) and inside quotes.
// Words of unknown charsets stay as they are; other bytes are those of GuessedUtf8.
std::string ReadHeaderText(std::string_view value);

// The entries of an address field, each read as above: cut at the commas that stand in no quotes,
// comments, brackets and groups.
std::vector<std::string> ReadAddresses(std::string_view value);

// The mailbox in an entry, "ada@example.com" of "Ada <ada@example.com>"; empty when there is none.
std::string MailboxOf(std::string_view entry);

}  // namespace zqv::cli
