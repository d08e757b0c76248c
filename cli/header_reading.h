// Decoding of header fields for a reader, from the bytes of the message. The library decodes only
// encoded words in upper case, and all words of a field in one charset; these functions have no
// such restriction.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace zqv::cli {

// Decodes a field's value to one line of UTF-8. Folds become blanks. Encoded words (RFC 2047) are
// decoded also with a lower-case letter, with a language (RFC 2231, section 5), and inside quotes.
// Words in unknown charsets stay as they are. Bytes outside encoded words are converted by
// GuessedUtf8.
std::string ReadHeaderText(std::string_view value);

// Splits an address field into its entries and decodes each. Entries end at commas outside quotes,
// comments, angle brackets and groups.
std::vector<std::string> ReadAddresses(std::string_view value);

// Returns the mailbox of an entry: "ada@example.com" for "Ada <ada@example.com>". Empty when there
// is none.
std::string MailboxOf(std::string_view entry);

}  // namespace zqv::cli
