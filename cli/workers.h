// Runs pieces of work in several processes at the same time.
#pragma once

#include <sys/types.h>

#include <cstddef>
#include <functional>
#include <string>
#include <vector>

namespace zqv::cli {

// A piece of work or its result: strings of any bytes, which can be sent to another process.
using Parcel = std::vector<std::string>;

// A pool of processes. For each piece either `done` or `failed` is called exactly once. A process
// that has ended, for whatever reason, is replaced by a new one.
class Workers {
 public:
  // Does one piece of work, in a process of the pool. An exception ends that process.
  using Work = std::function<Parcel(const Parcel&)>;
  // Called in this process when a piece is done, or when its process has ended. Pieces are not done
  // in the order in which they were submitted.
  using Done = std::function<void(const Parcel& piece, const Parcel& result)>;
  using Failed = std::function<void(const Parcel& piece, const std::string& reason)>;

  // Starts `count` processes, at least 1. Throws std::system_error when that fails.
  Workers(std::size_t count, Work work, Done done, Failed failed);
  // Ends the processes. Pieces that are not done are dropped without a call.
  ~Workers();
  Workers(const Workers&) = delete;
  Workers& operator=(const Workers&) = delete;

  // Waits until a process is free, and sends it the piece.
  void Submit(Parcel piece);
  // Waits until all pieces are done.
  void Finish();

 private:
  struct Worker {
    int socket = -1;
    pid_t process = -1;
    bool is_busy = false;
    Parcel piece;
  };

  void Start(Worker* worker);
  // Replaces a process that has ended. Returns why it ended.
  std::string Replace(Worker* worker);
  [[noreturn]] void Serve(int socket) const;
  Worker* FindFree();
  // Waits until at least one busy process has answered or ended.
  void WaitForOne();
  void Receive(Worker* worker);

  const Work work_;
  const Done done_;
  const Failed failed_;
  std::vector<Worker> workers_;
};

}  // namespace zqv::cli
