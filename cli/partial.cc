#include "cli/partial.h"

#include <algorithm>
#include <iterator>
#include <utility>
#include <vector>

#include "base/ascii.h"
#include "cli/attached_files.h"
#include "cli/message_source.h"
#include "cli/text.h"
#include "cli/written_parameters.h"

namespace zqv::cli {
namespace {

constexpr std::size_t kMostPieces = 10000;

std::size_t NumberOf(const WrittenParameters& type, std::string_view name) {
  return ReadNumber(type.Text(name).value_or(std::string())).value_or(0);
}

// Whether the joined message takes this field from the inner header, not from the header of the
// first piece (RFC 2046, section 5.2.2.1).
bool BelongsToWholeMessage(std::string_view name) {
  static constexpr std::string_view kNames[] = {"Subject", "Message-ID", "Encrypted",
                                                "MIME-Version"};
  constexpr std::string_view kContent = "Content-";
  return base::EqualsIgnoringCase(name.substr(0, kContent.size()), kContent) ||
         std::any_of(std::begin(kNames), std::end(kNames),
                     [&](std::string_view known) { return base::EqualsIgnoringCase(name, known); });
}

void AppendFields(const MessageSource& source, bool of_the_whole, std::string* text) {
  const mime::Part& top = source.parts().front();
  for (std::size_t i = 0; i < top.field_count; ++i) {
    const mime::Field& field = source.message().fields()[top.first_field + i];
    if (BelongsToWholeMessage(field.name) == of_the_whole) text->append(field.bytes).append("\n");
  }
}

// Joins the pieces of a message, which must be in order (RFC 2046, section 5.2.2.1).
std::string Joined(const std::vector<std::string>& pieces) {
  const auto body = [](const std::string& piece) {
    return std::string_view(piece).substr(HeaderOf(piece).size());
  };
  const std::string_view inner = body(pieces.front());
  std::string text;
  AppendFields(MessageSource(HeaderOf(pieces.front())), false, &text);
  AppendFields(MessageSource(HeaderOf(inner)), true, &text);
  text.append("\n").append(inner.substr(HeaderOf(inner).size()));
  for (auto piece = pieces.begin() + 1; piece != pieces.end(); ++piece) text += body(*piece);
  return text;
}

}  // namespace

std::optional<Piece> PieceOf(std::string_view message) {
  constexpr std::string_view kType = "partial";
  // A fast test that rejects most messages.
  const std::string_view header = HeaderOf(message);
  const auto same = [](char a, char b) { return base::LowerAscii(a) == b; };
  if (std::search(header.begin(), header.end(), kType.begin(), kType.end(), same) == header.end()) {
    return std::nullopt;
  }
  const MessageSource source(header);
  const WrittenParameters type(WrittenField(source, 0, "Content-Type"));
  if (type.main() != "message/partial") return std::nullopt;
  Piece piece = {type.Text("id").value_or(std::string()), NumberOf(type, "number"),
                 NumberOf(type, "total")};
  const bool is_piece = !piece.id.empty() && piece.number > 0 && piece.number <= kMostPieces;
  return is_piece ? std::optional(std::move(piece)) : std::nullopt;
}

bool PieceJoiner::Add(Item&& item) {
  constexpr std::size_t kLongestHeader = 65536;
  const std::string start = item.bytes ? std::string() : ReadStart(item.path, kLongestHeader);
  const std::optional<Piece> piece = PieceOf(item.bytes ? std::string_view(*item.bytes) : start);
  if (!piece) return visit_(std::move(item));
  Pieces& pieces = waiting_[piece->id];
  if (piece->total > 0) pieces.total = piece->total;
  const auto [place, is_new] = pieces.by_number.try_emplace(piece->number, std::move(item));
  if (!is_new) return visit_(std::move(item));
  if (pieces.by_number.size() != pieces.total) return true;
  auto whole = waiting_.extract(piece->id);
  return HandOn(std::move(whole.mapped()));
}

bool PieceJoiner::HandOn(Pieces pieces) {
  const bool is_whole =
      pieces.by_number.size() == pieces.total && pieces.by_number.rbegin()->first == pieces.total;
  if (is_whole) {
    std::vector<std::string> bytes;
    for (const auto& [number, item] : pieces.by_number) {
      bytes.push_back(item.bytes ? *item.bytes : ReadBytes(item.path));
    }
    Item whole = std::move(pieces.by_number.begin()->second);
    whole.name += " and " + Counted(bytes.size() - 1, "piece") + " more";
    whole.bytes = Joined(bytes);
    return visit_(std::move(whole));
  }
  for (auto& [number, item] : pieces.by_number) {
    if (!visit_(std::move(item))) return false;
  }
  return true;
}

bool PieceJoiner::Finish() {
  for (auto& [id, pieces] : std::exchange(waiting_, {})) {
    if (!HandOn(std::move(pieces))) return false;
  }
  return true;
}

}  // namespace zqv::cli
