// Whether our readers of fields' values and the MIME library make the same of a value.
//
// Each function says in words in what they differ first; empty when they agree. Ours reads the
// value from memory of just its size, so that a sanitizer sees a read beyond it.
#pragma once

#include <string>

namespace zqv::test {

std::string MailboxDifference(const std::string& value);
std::string GroupDifference(const std::string& value);
std::string AddressDifference(const std::string& value);
std::string MailboxListDifference(const std::string& value);
std::string AddressListDifference(const std::string& value);
std::string ContentTypeDifference(const std::string& value);
std::string ContentDispositionDifference(const std::string& value);
std::string MimeVersionDifference(const std::string& value);

// The first of all these.
std::string ValueDifference(const std::string& value);

}  // namespace zqv::test
