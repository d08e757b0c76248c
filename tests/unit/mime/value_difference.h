// Compares our parsers of field values with mimetic's.
//
// Each function describes the first difference between the two results; the description is empty
// when they are equal. Our parser reads a copy of the value in memory of exactly its size, so that
// a sanitizer finds a read beyond it.
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

// The first difference that any of the functions above finds.
std::string ValueDifference(const std::string& value);

}  // namespace zqv::test
