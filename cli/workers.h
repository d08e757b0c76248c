// Work that is done in processes side by side, each piece by one of them.
#pragma once

#include <sys/types.h>

#include <cstddef>
#include <functional>
#include <string>
#include <vector>

namespace zqv::cli {

// A piece of work, or its result: strings of any bytes.
using Parcel = std::vector<std::string>;

// Invariant: every piece is answered once, by its result or, when the process that had it ended,
// by what ended that. A new process takes the place of one that has ended, whatever ended it.
class Workers {
 public:
  // Runs in a process of its own; what it throws ends that.
  using Work = std::function<Parcel(const Parcel&)>;
  // Run in this process, in the order in which the pieces are done.
  using Done = std::function<void(const Parcel& piece, const Parcel& result)>;
  using Lost = std::function<void(const Parcel& piece, const std::string& reason)>;

  // Starts `count` processes, at least 1. Throws std::system_error when that cannot be.
  Workers(std::size_t count, Work work, Done done, Lost lost);
  // Ends the processes; pieces that are not done are lost without a word.
  ~Workers();
  Workers(const Workers&) = delete;
  Workers& operator=(const Workers&) = delete;

  // Waits until a process is free, and gives it the piece.
  void Give(Parcel piece);
  // Waits until all is done.
  void Finish();

 private:
  struct Worker {
    int socket = -1;
    pid_t process = -1;
    bool is_busy = false;
    Parcel piece;
  };

  void Start(Worker* worker);
  // What ended the process, which is replaced.
  std::string Replace(Worker* worker);
  [[noreturn]] void Serve(int socket) const;
  Worker* FindFree();
  // Waits until at least one busy process has answered or ended.
  void WaitForOne();
  void Receive(Worker* worker);

  const Work work_;
  const Done done_;
  const Lost lost_;
  std::vector<Worker> workers_;
};

}  // namespace zqv::cli
