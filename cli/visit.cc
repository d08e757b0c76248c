#include "cli/visit.h"

#include <cstddef>
#include <exception>
#include <optional>
#include <stdexcept>
#include <utility>

#include "cli/filter.h"
#include "cli/partial.h"
#include "cli/text.h"

namespace zqv::cli {
namespace {

// Passes each item on when the next one arrives, so that the handler of the first item knows
// whether there are more.
class Lookahead {
 public:
  // `several` tells whether there is more than one item. Returns false to stop.
  using Handle = std::function<bool(const Item& item, bool several)>;

  explicit Lookahead(Handle handle) : handle_(std::move(handle)) {}

  bool Add(Item&& item) {
    if (!held_) {
      held_ = std::move(item);
      return true;
    }
    several_ = true;
    const Item before = std::exchange(*held_, std::move(item));
    return goes_on_ = handle_(before, true);
  }

  // Passes the last item on. Must be called after it was added.
  void Finish() {
    if (held_ && goes_on_) handle_(*held_, several_);
  }

 private:
  const Handle handle_;
  std::optional<Item> held_;
  bool several_ = false;
  bool goes_on_ = true;
};

int HandleEach(const Session& session, const Request& request, const Lookahead::Handle& handle) {
  Lookahead lookahead(handle);
  const bool all_good =
      ForEachChosen(session, request, [&](Item&& item) { return lookahead.Add(std::move(item)); });
  lookahead.Finish();
  return all_good ? 0 : 1;
}

// Calls `work` and reports its exception with the item's name. Returns false then, else the result.
template <typename Work>
bool Guarded(const Item& item, const Work& work) {
  try {
    return work();
  } catch (const std::exception& error) {
    Complain(item.name + ": " + ReasonOf(error));
    return false;
  }
}

}  // namespace

bool ForEachChosen(const Session& session, const Request& request, const VisitItem& visit) {
  const std::size_t wanted = request.message;
  std::size_t count = 0;
  bool is_there = wanted == 0;
  const VisitItem hand_on = [&](Item&& item) {
    if (!Passes(request.filter, session, item)) return wanted == 0;
    return visit(std::move(item)) && wanted == 0;
  };
  PieceJoiner joiner(hand_on);
  bool goes_on = true;
  const bool all_read = ForEachItem(request.source, [&](Item&& item) {
    ++count;
    if (wanted != 0 && count != wanted) return true;
    is_there = true;
    goes_on = wanted == 0 ? joiner.Add(std::move(item)) : hand_on(std::move(item));
    return goes_on;
  });
  if (goes_on) joiner.Finish();
  if (!is_there) Complain("there is no message " + std::to_string(wanted));
  return all_read && is_there;
}

Parcel ParcelOf(const Item& item) {
  Parcel parcel = {item.name, item.relative_path, item.path};
  if (item.bytes) parcel.push_back(*item.bytes);
  return parcel;
}

Item ItemOf(const Parcel& parcel) {
  Item item = {parcel[0], parcel[1], parcel[2], std::nullopt};
  if (parcel.size() > 3) item.bytes = parcel[3];
  return item;
}

int ForEachMessage(const Session& session, const Request& request, Output* output,
                   const Visit& visit, Headings headings) {
  const bool several_inputs =
      request.source.inputs.size() > 1 && request.message == 0 && request.filter.IsEmpty();
  const auto announce = [&](const std::string& name) {
    const std::string line = output->Strong("==> " + SafeText(name, Lines::kOne) + " <==");
    output->PrintBeforeNext((output->HasPrinted() ? "\n" : "") + line + "\n");
    if (headings == Headings::kAlways) output->PrintWaiting();
  };
  bool all_good = true;
  const auto handle = [&](const Item& item, bool several) {
    const bool is_good = Guarded(item, [&] {
      const standin::Object email = session.Open(item);
      if (!request.json && (several || several_inputs)) announce(item.name);
      return visit(item.name, email);
    });
    all_good = all_good && is_good;
    return output->IsGood();
  };
  const int code = HandleEach(session, request, handle);
  output->PrintBeforeNext({});  // drops the heading of a last message without output
  return all_good ? code : 1;
}

int ForOneMessage(const Session& session, const Request& request, const Visit& visit,
                  const char* advice) {
  bool all_good = true;
  const auto handle = [&](const Item& item, bool several) {
    const bool is_good = Guarded(item, [&] {
      if (several) {
        throw std::runtime_error(
            std::string("is not the only message; --message NUMBER chooses one") + advice);
      }
      return visit(item.name, session.Open(item));
    });
    all_good = all_good && is_good;
    return !several;
  };
  const int code = HandleEach(session, request, handle);
  return all_good ? code : 1;
}

}  // namespace zqv::cli
