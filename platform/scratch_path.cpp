#include "platform/scratch_path.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <mutex>
#include <set>
#include <string>
#include <system_error>
#include <thread>
#include <utility>

namespace iorder {
namespace {

namespace fs = std::filesystem;

/// The paths that are there now. Never destroyed: the thread that waits for interruptions uses it to the end.
struct ScratchPaths {
  std::mutex mutex;
  std::set<fs::path> paths;
};

ScratchPaths& Scratch() {
  static auto* const scratch = new ScratchPaths;
  return *scratch;
}

/// Everything behind the first dot of the file's name: "a.trace.jsonl.gz" gives ".trace.jsonl.gz".
std::string Endings(const fs::path& file) {
  const std::string name = file.filename().string();
  const size_t dot = name.find('.', 1);
  return dot == std::string::npos ? "" : name.substr(dot);
}

[[noreturn]] void Raise(const char* what, const fs::path& path, int error) {
  throw fs::filesystem_error(what, path, std::error_code(error, std::generic_category()));
}

}  // namespace

CScratchPath::CScratchPath(fs::path path) : m_path(std::move(path)) {}

CScratchPath::CScratchPath(CScratchPath&& other) noexcept : m_path(std::exchange(other.m_path, {})) {}

CScratchPath::~CScratchPath() {
  if (m_path.empty()) return;
  const std::lock_guard lock(Scratch().mutex);
  std::error_code ignored;
  fs::remove_all(m_path, ignored);
  Scratch().paths.erase(m_path);
}

CScratchPath CScratchPath::NewFileBeside(const fs::path& target) {
  const std::string beginning = "unfinished-" + std::to_string(getpid()) + "-";
  // Made and noted under one hold of the lock, so that an interruption finds both or neither.
  const std::lock_guard lock(Scratch().mutex);
  for (int number = 1;; ++number) {
    const fs::path path = target.parent_path() / (beginning + std::to_string(number) + Endings(target));
    const int file = open(path.c_str(), O_CREAT | O_EXCL | O_WRONLY | O_CLOEXEC, 0666);
    if (file >= 0) {
      close(file);
      Scratch().paths.insert(path);
      return CScratchPath(path);
    }
    if (errno != EEXIST) Raise("cannot make a file", target, errno);
  }
}

CScratchPath CScratchPath::NewFolder() {
  std::error_code error;
  const fs::path parent = fs::temp_directory_path(error);
  if (error) Raise("no folder for temporary files, TMPDIR names it", parent, error.value());
  std::string name = (parent / "iorder-XXXXXX").string();
  const std::lock_guard lock(Scratch().mutex);
  if (mkdtemp(name.data()) == nullptr) Raise("cannot make a folder", name, errno);
  Scratch().paths.insert(name);
  return CScratchPath(name);
}

void CScratchPath::MoveTo(const fs::path& target) {
  const std::lock_guard lock(Scratch().mutex);
  fs::rename(m_path, target);
  Scratch().paths.erase(std::exchange(m_path, {}));
}

void CleanUpOnInterruption() {
  sigset_t signals;
  sigemptyset(&signals);
  for (const int signal : {SIGINT, SIGTERM, SIGHUP}) {
    // One that whoever started the program has switched off stays off.
    struct sigaction action;
    sigaction(signal, nullptr, &action);
    if (action.sa_handler != SIG_IGN) sigaddset(&signals, signal);
  }
  // Threads that begin later inherit the mask, so that only the one below ever sees these signals.
  pthread_sigmask(SIG_BLOCK, &signals, nullptr);
  std::thread([signals] {
    int signal = 0;
    sigwait(&signals, &signal);
    // The lock is kept: nothing new is made behind the clean-up.
    Scratch().mutex.lock();
    std::error_code ignored;
    for (const fs::path& path : Scratch().paths) fs::remove_all(path, ignored);
    std::signal(signal, SIG_DFL);
    pthread_sigmask(SIG_UNBLOCK, &signals, nullptr);
    kill(getpid(), signal);
    for (;;) pause();
  }).detach();
}

}  // namespace iorder
