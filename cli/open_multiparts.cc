#include "cli/open_multiparts.h"

#include <algorithm>

#include "cli/text.h"

namespace zqv::cli {
namespace {

constexpr std::string_view kHyphens = "--";

bool BeginsWith(std::string_view text, std::string_view start) {
  return text.substr(0, start.size()) == start;
}

}  // namespace

void OpenMultiparts::Push(std::string_view boundary) {
  std::string text(kHyphens);
  text += boundary;
  if (text.size() <= kLongest) ++count_by_length_[text.size()];
  depths_[text].push_back(open_.size());
  open_.push_back(std::move(text));
}

void OpenMultiparts::Pop() {
  const std::string& text = open_.back();
  if (text.size() <= kLongest) --count_by_length_[text.size()];
  const auto found = depths_.find(text);
  found->second.pop_back();
  if (found->second.empty()) depths_.erase(found);
  open_.pop_back();
}

std::optional<std::size_t> OpenMultiparts::FindText(std::string_view text) const {
  const auto found = depths_.find(std::string(text));
  if (found == depths_.end()) return std::nullopt;
  return found->second.back();
}

// The innermost multipart of which the line is a delimiter.
std::optional<std::size_t> OpenMultiparts::FindOuter(std::string_view line) const {
  std::optional<std::size_t> depth;
  const auto look_at = [&](std::string_view text) {
    const std::optional<std::size_t> found = FindText(text);
    if (found && (!depth || *found > *depth)) depth = found;
  };
  for (std::size_t length = kHyphens.size(); length <= std::min(line.size(), kLongest); ++length) {
    if (count_by_length_[length] > 0) look_at(line.substr(0, length));
  }
  std::string_view whole = Trim(line);
  if (whole.size() <= kLongest) return depth;
  look_at(whole);
  if (whole.substr(whole.size() - kHyphens.size()) == kHyphens) {
    whole.remove_suffix(kHyphens.size());
    look_at(whole);
  }
  return depth;
}

std::optional<OpenMultiparts::Delimiter> OpenMultiparts::Find(std::string_view line) const {
  if (open_.empty() || !BeginsWith(line, kHyphens)) return std::nullopt;
  const std::optional<std::size_t> depth =
      BeginsWith(line, open_.back()) ? open_.size() - 1 : FindOuter(line);
  if (!depth) return std::nullopt;
  return Delimiter{*depth, BeginsWith(line.substr(open_[*depth].size()), kHyphens)};
}

}  // namespace zqv::cli
