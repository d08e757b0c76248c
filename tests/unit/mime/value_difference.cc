#include "tests/unit/mime/value_difference.h"

#include <mimetic/mimetic.h>

#include <algorithm>
#include <cstddef>
#include <functional>
#include <memory>
#include <string_view>

#include "mime/addresses.h"
#include "mime/mime_version.h"
#include "mime/parameters.h"

namespace zqv::test {
namespace {

// A copy of a text in memory of exactly its length, without a terminating NUL.
class ExactCopy {
 public:
  explicit ExactCopy(const std::string& text) : bytes_(new char[text.size()]), size_(text.size()) {
    std::copy(text.begin(), text.end(), bytes_.get());
  }
  std::string_view view() const { return {bytes_.get(), size_}; }

 private:
  const std::unique_ptr<char[]> bytes_;
  const std::size_t size_;
};

// Keeps the first of several differences.
class Differences {
 public:
  void Compare(const char* what, std::string_view ours, const std::string& theirs) {
    if (ours == theirs || !first_.empty()) return;
    first_ = std::string(what) + ": \"" + std::string(ours) + "\" is not \"" + theirs + "\"";
  }
  void Compare(const char* what, std::size_t ours, std::size_t theirs) {
    if (ours != theirs) Compare(what, std::to_string(ours), std::to_string(theirs));
  }
  // Expects `part` to be a view into `whole`.
  void ExpectInside(std::string_view part, std::string_view whole) {
    const std::less_equal<> not_behind;
    if (!not_behind(whole.data(), part.data()) ||
        !not_behind(part.data() + part.size(), whole.data() + whole.size())) {
      Compare("a text that lies elsewhere", part, std::string(whole));
    }
  }
  const std::string& first() const { return first_; }

 private:
  std::string first_;
};

void Compare(Differences& differences, const mime::Mailbox& ours, const mimetic::Mailbox& theirs) {
  differences.Compare("mailbox", ours.text, theirs.str());
  differences.Compare("label", ours.label, theirs.label(0));
  differences.Compare("local part", ours.local_part, theirs.mailbox(1));
  differences.Compare("domain", ours.domain, theirs.domain(1));
  differences.Compare("source route", ours.source_route, theirs.sourceroute(1));
}

void Compare(Differences& differences, const mime::Group& ours, const mimetic::Group& theirs) {
  differences.Compare("group", ours.text, theirs.str());
  differences.Compare("name of a group", ours.name, theirs.name(0));
  differences.Compare("mailboxes of a group", ours.mailboxes.size(), theirs.size());
  for (std::size_t i = 0; i < std::min(ours.mailboxes.size(), theirs.size()); ++i) {
    Compare(differences, ours.mailboxes[i], theirs[i]);
    differences.ExpectInside(ours.mailboxes[i].text, ours.text);
  }
}

// Compares a mailbox list and returns the number of its mailboxes.
std::size_t Compare(Differences& differences, const mime::Address& ours,
                    const mimetic::Address& theirs) {
  differences.Compare("is a group", ours.is_group() ? 1 : 0, theirs.isGroup() ? 1 : 0);
  differences.Compare("address", ours.text(), theirs.str());
  if (!differences.first().empty()) return 0;
  if (theirs.isGroup()) {
    Compare(differences, *ours.group, theirs.group());
    return theirs.group().size();
  }
  Compare(differences, *ours.mailbox, theirs.mailbox());
  return 1;
}

// Compares the parameters, which Content-Type and Content-Disposition have in common.
template <class Theirs>
void Compare(Differences& differences, const mime::Parameters& ours, const Theirs& theirs) {
  differences.Compare("parameters", ours.Count(), theirs.paramList().size());
  constexpr std::size_t kMost = 20;  // number of parameters that are also looked up by name
  std::size_t asked = 0;
  for (const mimetic::FieldParam& parameter : theirs.paramList()) {
    if (++asked > kMost) break;
    std::string name = parameter.name();
    differences.Compare("parameter", ours.Find(name), theirs.param(name));
    for (char& c : name) c = static_cast<char>(c >= 'a' && c <= 'z' ? c - 'a' + 'A' : c);
    differences.Compare("parameter in capitals", ours.Find(name), theirs.param(name));
  }
  for (const char* name : {"boundary", "charset", "name", "filename", "filename*", "", "a"}) {
    differences.Compare("parameter", ours.Find(name), theirs.param(name));
  }
}

}  // namespace

std::string MailboxDifference(const std::string& value) {
  const ExactCopy copy(value);
  Differences differences;
  Compare(differences, *mime::MailboxValue(copy.view()), mimetic::Mailbox(value));
  return differences.first();
}

std::string GroupDifference(const std::string& value) {
  const ExactCopy copy(value);
  const mimetic::Group theirs(value);
  Differences differences;
  Compare(differences, *mime::GroupValue(copy.view()), theirs);
  differences.Compare("count", mime::GroupValue::CountMailboxes(copy.view()), theirs.size());
  return differences.first();
}

std::string AddressDifference(const std::string& value) {
  const ExactCopy copy(value);
  Differences differences;
  const std::size_t count =
      Compare(differences, *mime::AddressValue(copy.view()), mimetic::Address(value));
  differences.Compare("count", mime::AddressValue::CountMailboxes(copy.view()), count);
  return differences.first();
}

std::string MailboxListDifference(const std::string& value) {
  const ExactCopy copy(value);
  const mime::MailboxList ours(copy.view());
  const mimetic::MailboxList theirs(value);
  Differences differences;
  differences.Compare("mailboxes", ours.size(), theirs.size());
  differences.Compare("count", mime::MailboxList::CountMailboxes(copy.view()), theirs.size());
  differences.Compare("list", ours.text(), theirs.str());
  for (std::size_t i = 0; i < std::min(ours.size(), theirs.size()); ++i) {
    Compare(differences, ours[i], theirs[i]);
    differences.ExpectInside(ours[i].text, ours.text());
  }
  return differences.first();
}

std::string AddressListDifference(const std::string& value) {
  const ExactCopy copy(value);
  const mime::AddressList ours(copy.view());
  const mimetic::AddressList theirs(value);
  Differences differences;
  differences.Compare("addresses", ours.size(), theirs.size());
  differences.Compare("list", ours.text(), theirs.str());
  std::size_t count = 0;
  for (std::size_t i = 0; i < std::min(ours.size(), theirs.size()); ++i) {
    count += Compare(differences, ours[i], theirs[i]);
    differences.ExpectInside(ours[i].text(), ours.text());
  }
  differences.Compare("count", mime::AddressList::CountMailboxes(copy.view()), count);
  return differences.first();
}

std::string ContentTypeDifference(const std::string& value) {
  const ExactCopy copy(value);
  const mime::ContentType ours(copy.view());
  const mimetic::ContentType theirs(value);
  Differences differences;
  differences.Compare("type", ours.type(), theirs.type());
  differences.Compare("subtype", ours.subtype(), theirs.subtype());
  differences.Compare("content type", ours.Text(), theirs.str());
  Compare(differences, ours.parameters(), theirs);
  return differences.first();
}

std::string ContentDispositionDifference(const std::string& value) {
  const ExactCopy copy(value);
  const mime::ContentDisposition ours(copy.view());
  const mimetic::ContentDisposition theirs(value);
  Differences differences;
  differences.Compare("type", ours.type(), theirs.type());
  differences.Compare("content disposition", ours.Text(), theirs.str());
  Compare(differences, ours.parameters(), theirs);
  return differences.first();
}

std::string MimeVersionDifference(const std::string& value) {
  const ExactCopy copy(value);
  Differences differences;
  differences.Compare("version", mime::MimeVersionText(copy.view()),
                      mimetic::MimeVersion(value).str());
  return differences.first();
}

std::string ValueDifference(const std::string& value) {
  for (const auto difference : {MailboxDifference, GroupDifference, AddressDifference,
                                MailboxListDifference, AddressListDifference, ContentTypeDifference,
                                ContentDispositionDifference, MimeVersionDifference}) {
    const std::string first = difference(value);
    if (!first.empty()) return first;
  }
  return {};
}

}  // namespace zqv::test
