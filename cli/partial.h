// Joins messages that were sent in several pieces (message/partial, RFC 2046, section 5.2.2).
#pragma once

#include <cstddef>
#include <map>
#include <optional>
#include <string>
#include <string_view>

#include "cli/source.h"

namespace zqv::cli {

// The parameters of a message/partial.
struct Piece {
  std::string id;
  std::size_t number;  // position of the piece, from 1
  std::size_t total;   // number of pieces; 0: not stated, since only the last piece must state it
};
// Returns nothing when the message is not a piece. `message` may be the header only.
std::optional<Piece> PieceOf(std::string_view message);

// Passes messages on to a visitor. It holds pieces back until all pieces of their message have
// arrived.
class PieceJoiner {
 public:
  explicit PieceJoiner(const VisitItem& visit) : visit_(visit) {}

  // False once the visitor has returned false.
  bool Add(Item&& item);
  // Must be called after the last message. Passes on the pieces of incomplete messages, unchanged.
  bool Finish();

 private:
  struct Pieces {
    std::map<std::size_t, Item> by_number;
    std::size_t total = 0;
  };

  bool HandOn(Pieces pieces);

  const VisitItem& visit_;
  std::map<std::string, Pieces> waiting_;  // pieces by the id that they have in common
};

}  // namespace zqv::cli
