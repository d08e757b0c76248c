// A file of tables that are what the C library of the machine says that made them, for systems
// whose own library converts otherwise or not at all. standin/make_charset_tables.cc writes it,
// standin/charset_tables.cc reads it.
//
// The file: kTableMagic, then one table after another, each a Table and its runs, sorted by length
// and key.
#pragma once

#include <cstddef>
#include <cstdint>

namespace zqv::standin {

inline constexpr char kTableMagic[8] = {'z', 'q', 'v', 't', 'a', 'b', '0', '1'};

enum class TableKind : std::uint32_t {
  kDecode,    // from the bytes of a character to its code points
  kEncode,    // from a code point to its bytes
  kFoldCase,  // from a code point to its small letter
};

// A stateful charset has a table for each state, which a sequence of bytes leads to.
struct Table {
  char charset[24];
  char state[8];  // that sequence, ended by NULs; empty for the state at the beginning
  TableKind kind;
  std::uint32_t runs;
};

inline constexpr std::size_t kMostPoints = 3;

// `count` keys one after the other, whose values follow each other as well. Bytes are a number of
// so many, the first of them the highest.
struct Run {
  std::uint32_t length;  // of the keys in bytes; 4 for a code point
  std::uint32_t key;
  std::uint32_t count;
  std::uint32_t size;                 // of the value: code points or bytes
  std::uint32_t values[kMostPoints];  // only the last point counts on; bytes have the first alone
};

}  // namespace zqv::standin
