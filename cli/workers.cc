#include "cli/workers.h"

#include <poll.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <exception>
#include <optional>
#include <system_error>
#include <utility>

namespace zqv::cli {
namespace {

[[noreturn]] void Fail(const char* what) {
  throw std::system_error(errno, std::generic_category(), what);
}

// False when the other process has ended.
bool SendBytes(int socket, const char* bytes, std::size_t size) {
  while (size > 0) {
    const ssize_t sent = send(socket, bytes, size, MSG_NOSIGNAL);
    if (sent < 0 && errno == EINTR) continue;
    if (sent < 0) return false;
    bytes += sent;
    size -= static_cast<std::size_t>(sent);
  }
  return true;
}

bool ReceiveBytes(int socket, char* bytes, std::size_t size) {
  while (size > 0) {
    const ssize_t received = recv(socket, bytes, size, 0);
    if (received < 0 && errno == EINTR) continue;
    if (received <= 0) return false;
    bytes += received;
    size -= static_cast<std::size_t>(received);
  }
  return true;
}

bool SendNumber(int socket, std::uint64_t number) {
  char bytes[sizeof number];
  std::memcpy(bytes, &number, sizeof number);
  return SendBytes(socket, bytes, sizeof number);
}

std::optional<std::uint64_t> ReceiveNumber(int socket) {
  char bytes[sizeof(std::uint64_t)];
  if (!ReceiveBytes(socket, bytes, sizeof bytes)) return std::nullopt;
  std::uint64_t number = 0;
  std::memcpy(&number, bytes, sizeof number);
  return number;
}

bool SendParcel(int socket, const Parcel& parcel) {
  if (!SendNumber(socket, parcel.size())) return false;
  return std::all_of(parcel.begin(), parcel.end(), [&](const std::string& text) {
    return SendNumber(socket, text.size()) && SendBytes(socket, text.data(), text.size());
  });
}

std::optional<Parcel> ReceiveParcel(int socket) {
  const std::optional<std::uint64_t> count = ReceiveNumber(socket);
  if (!count) return std::nullopt;
  Parcel parcel(*count);
  for (std::string& text : parcel) {
    const std::optional<std::uint64_t> size = ReceiveNumber(socket);
    if (!size) return std::nullopt;
    text.resize(*size);
    if (!ReceiveBytes(socket, text.data(), text.size())) return std::nullopt;
  }
  return parcel;
}

// Whether the process has ended. It must be idle.
bool HasEnded(int socket) {
  char byte = 0;
  return recv(socket, &byte, 1, MSG_PEEK | MSG_DONTWAIT) == 0;
}

std::string EndOf(pid_t process) {
  int status = 0;
  while (waitpid(process, &status, 0) < 0 && errno == EINTR) {
  }
  if (WIFSIGNALED(status)) {
    return std::string("the process was ended by a signal: ") + strsignal(WTERMSIG(status));
  }
  return "the process ended with exit code " + std::to_string(WEXITSTATUS(status));
}

}  // namespace

Workers::Workers(std::size_t count, Work work, Done done, Failed failed)
    : work_(std::move(work)), done_(std::move(done)), failed_(std::move(failed)), workers_(count) {
  for (Worker& worker : workers_) Start(&worker);
}

Workers::~Workers() {
  for (const Worker& worker : workers_) {
    if (worker.socket >= 0) close(worker.socket);
  }
  for (const Worker& worker : workers_) {
    if (worker.process > 0) static_cast<void>(EndOf(worker.process));
  }
}

void Workers::Start(Worker* worker) {
  int ends[2] = {-1, -1};
  if (socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, ends) != 0) Fail("socketpair");
  static_cast<void>(std::fflush(nullptr));  // otherwise both processes would write buffered output
  const pid_t process = fork();
  if (process == 0) {
    // Closes the sockets of the other workers, too: a worker ends when all copies of the other end
    // of its socket are closed.
    close(ends[0]);
    for (const Worker& other : workers_) {
      if (other.socket >= 0) close(other.socket);
    }
    Serve(ends[1]);
  }
  close(ends[1]);
  worker->socket = ends[0];
  worker->process = process;
  worker->is_busy = false;
  if (process < 0) Fail("fork");
}

void Workers::Serve(int socket) const {
  int code = 0;
  try {
    while (const std::optional<Parcel> piece = ReceiveParcel(socket)) {
      if (!SendParcel(socket, work_(*piece))) break;
    }
  } catch (const std::exception&) {
    code = 1;
  }
  // Skips destructors and exit handlers, which belong to the parent process.
  static_cast<void>(std::fflush(nullptr));
  _exit(code);
}

Workers::Worker* Workers::FindFree() {
  while (true) {
    const auto found = std::find_if(workers_.begin(), workers_.end(),
                                    [](const Worker& worker) { return !worker.is_busy; });
    if (found != workers_.end()) return &*found;
    WaitForOne();
  }
}

void Workers::Submit(Parcel piece) {
  Worker* const worker = FindFree();
  if (HasEnded(worker->socket)) static_cast<void>(Replace(worker));
  worker->piece = std::move(piece);
  worker->is_busy = true;
  // A failure is noticed when the answer is received.
  static_cast<void>(SendParcel(worker->socket, worker->piece));
}

void Workers::Finish() {
  const auto is_busy = [](const Worker& worker) { return worker.is_busy; };
  while (std::any_of(workers_.begin(), workers_.end(), is_busy)) WaitForOne();
}

void Workers::WaitForOne() {
  std::vector<pollfd> sockets;
  for (const Worker& worker : workers_) {
    sockets.push_back({worker.is_busy ? worker.socket : -1, POLLIN, 0});
  }
  if (poll(sockets.data(), sockets.size(), -1) < 0) {
    if (errno == EINTR) return;
    Fail("poll");
  }
  for (std::size_t i = 0; i < sockets.size(); ++i) {
    if (sockets[i].revents != 0) Receive(&workers_[i]);
  }
}

void Workers::Receive(Worker* worker) {
  const Parcel piece = std::exchange(worker->piece, {});
  const std::optional<Parcel> result = ReceiveParcel(worker->socket);
  worker->is_busy = false;
  if (result) {
    done_(piece, *result);
    return;
  }
  failed_(piece, Replace(worker));
}

std::string Workers::Replace(Worker* worker) {
  close(std::exchange(worker->socket, -1));
  std::string reason = EndOf(std::exchange(worker->process, -1));
  Start(worker);
  return reason;
}

}  // namespace zqv::cli
