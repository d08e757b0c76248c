// Messages that were sent in several pieces (RFC 2046, section 5.2.2): given together, they are
// joined again.
#pragma once

#include <cstddef>
#include <map>
#include <optional>
#include <string>
#include <string_view>

#include "cli/source.h"

namespace zqv::cli {

// What the header of a message/partial says.
struct Piece {
  std::string id;
  std::size_t number;  // from 1
  std::size_t total;   // 0: only the last piece says it
};
// Nothing for a message that is no piece. `message` may end behind its header.
std::optional<Piece> PieceOf(std::string_view message);

// Hands on messages; pieces are kept until all of one message are there.
class PieceJoiner {
 public:
  explicit PieceJoiner(const VisitItem& visit) : visit_(visit) {}

  // False once the visitor wants no more.
  bool Add(Item&& item);
  // Behind the last message: hands on the pieces of which others are missing, as they are.
  bool Finish();

 private:
  struct Pieces {
    std::map<std::size_t, Item> by_number;
    std::size_t total = 0;
  };

  bool HandOn(Pieces pieces);

  const VisitItem& visit_;
  std::map<std::string, Pieces> waiting_;  // by their common id
};

}  // namespace zqv::cli
