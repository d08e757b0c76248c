// `zqv bench`: measures how fast the library constructs messages on this machine.
//
// It reads all messages first. A round constructs each of them from its bytes and releases it. The
// time includes the work of the stand-in host.
#include <algorithm>
#include <array>
#include <chrono>
#include <cstdio>
#include <exception>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "cli/print_json.h"
#include "cli/source.h"
#include "cli/text.h"
#include "cli/verbs.h"
#include "cli/visit.h"

namespace zqv::cli {
namespace {

using Seconds = std::chrono::duration<double>;

struct Load {
  std::vector<Item> items;  // each with its bytes
  std::size_t bytes = 0;
};

// Adds a message. Constructs it once before, to report and skip a message that cannot be parsed.
bool AddTo(Load* load, Item&& item, const Session& session) {
  try {
    session.Open(item);
    if (!item.bytes) item.bytes = ReadBytes(item.path);
  } catch (const std::exception& error) {
    Complain(item.name + ": " + ReasonOf(error));
    return false;
  }
  load->bytes += item.bytes->size();
  load->items.push_back(std::move(item));
  return true;
}

Seconds MeasureRound(const Session& session, const Load& load) {
  const auto start = std::chrono::steady_clock::now();
  for (const Item& item : load.items) session.Open(item);
  return std::chrono::steady_clock::now() - start;
}

struct Speed {
  double megabytes;
  double messages;
};

Speed SpeedOf(const Load& load, Seconds round) {
  constexpr double kMegabyte = 1e6;
  return {static_cast<double>(load.bytes) / kMegabyte / round.count(),
          static_cast<double>(load.items.size()) / round.count()};
}

std::string LineOf(const char* label, const Speed& speed) {
  std::array<char, 100> text{};
  static_cast<void>(std::snprintf(text.data(), text.size(), "%-8s %8.1f MB/s  %10.0f messages/s",
                                  label, speed.megabytes, speed.messages));
  return text.data();
}

JsonValue Describe(const Speed& speed) {
  return {{"megabytes_a_second", speed.megabytes}, {"messages_a_second", speed.messages}};
}

void PrintSpeeds(const Load& load, const std::vector<Seconds>& rounds, bool json, Output* output) {
  const std::pair<const char*, Speed> speeds[] = {
      {"slowest", SpeedOf(load, rounds.back())},
      {"median", SpeedOf(load, rounds[rounds.size() / 2])},
      {"fastest", SpeedOf(load, rounds.front())},
  };
  if (!json) {
    output->PrintLine(Counted(load.items.size(), "message") + ", " + Counted(load.bytes, "byte") +
                      ", " + Counted(rounds.size(), "round"));
    for (const auto& [label, speed] : speeds) output->PrintLine(LineOf(label, speed));
    return;
  }
  JsonValue value = {
      {"messages", load.items.size()}, {"bytes", load.bytes}, {"rounds", rounds.size()}};
  for (const auto& [label, speed] : speeds) value[label] = Describe(speed);
  PrintDocument("bench", std::move(value), output);
}

}  // namespace

int Bench(const Session& session, const Request& request, Output* output) {
  Load load;
  bool all_good = true;
  const bool all_read = ForEachChosen(session, request, [&](Item&& item) {
    if (!AddTo(&load, std::move(item), session)) all_good = false;
    return true;
  });
  if (load.items.empty()) {
    if (all_read && all_good) Complain("there is no message to measure with");
    return 1;
  }
  std::vector<Seconds> rounds;
  for (std::size_t i = 0; i < request.rounds; ++i) rounds.push_back(MeasureRound(session, load));
  std::sort(rounds.begin(), rounds.end());
  PrintSpeeds(load, rounds, request.json, output);
  return all_read && all_good ? 0 : 1;
}

}  // namespace zqv::cli
