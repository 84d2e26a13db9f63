// A filter in the child stops it at writing calls alone, so that the rest runs at its usual speed;
// at each stop the tracer counts, and at the chosen one it interferes.

#include "support/posix/syscall_tracer.h"

#include <fcntl.h>
#include <linux/audit.h>
#include <linux/capability.h>
#include <linux/filter.h>
#include <linux/seccomp.h>
#include <sys/mman.h>
#include <sys/prctl.h>
#include <sys/ptrace.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <sys/uio.h>
#include <sys/user.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <climits>
#include <csignal>
#include <cstddef>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <iostream>
#include <span>
#include <stdexcept>
#include <vector>

namespace quarnel {

#if defined(__x86_64__)
namespace {

constexpr int kNoPath = -1;

struct Call {
  uint32_t number;
  std::string_view name;
  int path = kNoPath;       // which argument is a path; without one the first is a descriptor
  int openFlags = kNoPath;  // which argument tells whether the call opens for writing
  int byteCount = kNoPath;  // which argument may be lowered to do half of the work
};

// clang-format off
constexpr Call kCalls[] = {
    {SYS_write, "write", kNoPath, kNoPath, 2}, {SYS_pwrite64, "pwrite64", kNoPath, kNoPath, 2},
    {SYS_writev, "writev"}, {SYS_pwritev, "pwritev"}, {SYS_pwritev2, "pwritev2"},
    {SYS_sendfile, "sendfile", kNoPath, kNoPath, 3},
    {SYS_copy_file_range, "copy_file_range", kNoPath, kNoPath, 4}, {SYS_ftruncate, "ftruncate"},
    {SYS_fallocate, "fallocate"}, {SYS_fsync, "fsync"}, {SYS_fdatasync, "fdatasync"},
    {SYS_syncfs, "syncfs"}, {SYS_fchmod, "fchmod"}, {SYS_fchown, "fchown"},
    {SYS_fsetxattr, "fsetxattr"}, {SYS_fremovexattr, "fremovexattr"}, {SYS_truncate, "truncate", 0},
    {SYS_open, "open", 0, 1}, {SYS_creat, "creat", 0}, {SYS_openat, "openat", 1, 2},
    {SYS_mkdir, "mkdir", 0}, {SYS_mkdirat, "mkdirat", 1}, {SYS_rmdir, "rmdir", 0},
    {SYS_unlink, "unlink", 0}, {SYS_unlinkat, "unlinkat", 1}, {SYS_rename, "rename", 0},
    {SYS_renameat, "renameat", 1}, {SYS_renameat2, "renameat2", 1}, {SYS_link, "link", 0},
    {SYS_linkat, "linkat", 1}, {SYS_symlink, "symlink", 1}, {SYS_symlinkat, "symlinkat", 2},
    {SYS_chmod, "chmod", 0}, {SYS_fchmodat, "fchmodat", 1}, {SYS_utimensat, "utimensat", 1},
    {SYS_setxattr, "setxattr", 0}, {SYS_lsetxattr, "lsetxattr", 0},
    {SYS_removexattr, "removexattr", 0}, {SYS_lremovexattr, "lremovexattr", 0},
};
// clang-format on

// Those that look at something.
// clang-format off
constexpr Call kLooks[] = {
    {SYS_read, "read"}, {SYS_pread64, "pread64"}, {SYS_readv, "readv"}, {SYS_preadv, "preadv"},
    {SYS_getdents64, "getdents64"}, {SYS_fstat, "fstat"}, {SYS_fgetxattr, "fgetxattr"},
    {SYS_stat, "stat", 0}, {SYS_lstat, "lstat", 0}, {SYS_newfstatat, "newfstatat", 1},
    {SYS_statx, "statx", 1}, {SYS_open, "open", 0}, {SYS_openat, "openat", 1},
    {SYS_openat2, "openat2", 1}, {SYS_access, "access", 0}, {SYS_faccessat, "faccessat", 1},
    {SYS_readlink, "readlink", 0}, {SYS_readlinkat, "readlinkat", 1}, {SYS_getxattr, "getxattr", 0},
    {SYS_lgetxattr, "lgetxattr", 0},
};
// clang-format on

std::span<const Call> CallsOf(const Intervention& intervention) {
  return intervention.ofLooks ? std::span<const Call>(kLooks) : std::span<const Call>(kCalls);
}

constexpr uint32_t Low(size_t offset) { return static_cast<uint32_t>(offset); }

// Stops the child at the calls of the table.
std::vector<sock_filter> Filter(std::span<const Call> calls) {
  std::vector<sock_filter> code;
  const auto load = [&](size_t offset) {
    code.push_back(BPF_STMT(BPF_LD | BPF_W | BPF_ABS, Low(offset)));
  };
  const auto give = [&](uint32_t answer) { code.push_back(BPF_STMT(BPF_RET | BPF_K, answer)); };
  load(offsetof(seccomp_data, arch));
  code.push_back(BPF_JUMP(BPF_JMP | BPF_JEQ | BPF_K, AUDIT_ARCH_X86_64, 1, 0));
  give(SECCOMP_RET_ALLOW);
  load(offsetof(seccomp_data, nr));
  for (const Call& call : calls) {
    const bool opens = call.openFlags != kNoPath;
    const auto length = static_cast<uint8_t>(opens ? 4 : 1);
    code.push_back(BPF_JUMP(BPF_JMP | BPF_JEQ | BPF_K, call.number, 0, length));
    if (opens) {
      const auto flags = static_cast<size_t>(call.openFlags);
      load(offsetof(seccomp_data, args) + flags * sizeof(uint64_t));
      code.push_back(
          BPF_JUMP(BPF_JMP | BPF_JSET | BPF_K, O_CREAT | O_TRUNC | O_WRONLY | O_RDWR, 1, 0));
      give(SECCOMP_RET_ALLOW);
    }
    give(SECCOMP_RET_TRACE);
  }
  give(SECCOMP_RET_ALLOW);
  return code;
}

// The child's side; never returns. What goes wrong is told by an exit code that no program uses.
[[noreturn]] void RunChild(const std::function<int()>& program, int output,
                           std::span<const Call> calls) {
  constexpr int kNoStart = 125;
  const int nowhere = open("/dev/null", O_RDWR | O_CLOEXEC);
  dup2(nowhere, STDIN_FILENO);
  dup2(output, STDOUT_FILENO);
  dup2(nowhere, STDERR_FILENO);
  std::vector<sock_filter> code = Filter(calls);
  const sock_fprog filter{static_cast<unsigned short>(code.size()), code.data()};
  if (ptrace(PTRACE_TRACEME, 0, nullptr, nullptr) != 0) _exit(kNoStart);
  if (raise(SIGSTOP) != 0) _exit(kNoStart);
  if (prctl(PR_SET_NO_NEW_PRIVS, 1, 0, 0, 0) != 0 ||
      prctl(PR_SET_SECCOMP, SECCOMP_MODE_FILTER, &filter) != 0) {
    _exit(kNoStart);
  }
  int exitCode = kNoStart;
  try {
    exitCode = program();
  } catch (const std::exception& error) {
    const std::string text = std::string("uncaught: ") + error.what() + "\n";
    [[maybe_unused]] const ssize_t written = write(STDOUT_FILENO, text.data(), text.size());
  }
  _exit(exitCode);
}

class Tracer {
 public:
  Tracer(pid_t child, const Intervention& intervention, std::string_view from)
      : child_(child), intervention_(intervention), from_(from), counting_(from.empty()) {}

  TracedRun Run() {
    int status = 0;
    waitpid(child_, &status, 0);
    if (!WIFSTOPPED(status)) throw std::runtime_error("the child may not be traced");
    ptrace(PTRACE_SETOPTIONS, child_, nullptr,
           PTRACE_O_EXITKILL | PTRACE_O_TRACESECCOMP | PTRACE_O_TRACECLONE | PTRACE_O_TRACEFORK |
               PTRACE_O_TRACEVFORK | PTRACE_O_TRACEEXEC);
    ptrace(PTRACE_CONT, child_, nullptr, nullptr);
    for (;;) {
      const pid_t thread = waitpid(-1, &status, __WALL);
      if (thread < 0) break;
      if (WIFSTOPPED(status)) {
        Resume(thread, status);
      } else if (thread == child_) {
        if (WIFEXITED(status)) run_.exitCode = WEXITSTATUS(status);
        if (WIFSIGNALED(status)) run_.signal = WTERMSIG(status);
      }
    }
    return run_;
  }

 private:
  void Resume(pid_t thread, int status) {
    const int event = status >> 16;
    const int signal = WSTOPSIG(status);
    if (thread == tearing_) {
      kill(child_, SIGKILL);
    } else if (event == PTRACE_EVENT_SECCOMP) {
      return AtCall(thread);
    }
    // A thread begins with a stop of its own; other signals are the program's.
    const int passed = event != 0 || signal == SIGSTOP || signal == SIGTRAP ? 0 : signal;
    ptrace(PTRACE_CONT, thread, nullptr, passed);
  }

  void AtCall(pid_t thread) {
    user_regs_struct registers = {};
    ptrace(PTRACE_GETREGS, thread, nullptr, &registers);
    const std::span<const Call> calls = CallsOf(intervention_);
    const auto call = std::find_if(calls.begin(), calls.end(), [&](const Call& known) {
      return known.number == registers.orig_rax;
    });
    const bool counts = call != calls.end() && Counts(thread, *call, registers);
    if (counts) ++run_.calls;
    using Kind = Intervention::Kind;
    const bool isChosen = intervention_.kind == Kind::kFailFromThen
                              ? run_.calls >= intervention_.at
                              : run_.calls == intervention_.at;
    if (!counts || !isChosen || intervention_.kind == Kind::kNone) {
      ptrace(PTRACE_CONT, thread, nullptr, nullptr);
      return;
    }
    if (run_.place.empty()) run_.place = About(thread, *call, registers);
    if (intervention_.kind == Kind::kKill) {
      kill(child_, SIGKILL);
    } else if (intervention_.kind == Kind::kTear) {
      if (call->byteCount != kNoPath) Argument(registers, call->byteCount) /= 2;
      ptrace(PTRACE_SETREGS, thread, nullptr, &registers);
      tearing_ = thread;
      ptrace(PTRACE_SYSCALL, thread, nullptr, nullptr);
    } else {
      // No call has this number: the kernel passes over it and gives what stands here.
      registers.orig_rax = ~0ULL;
      registers.rax = static_cast<unsigned long long>(-static_cast<long long>(intervention_.error));
      ptrace(PTRACE_SETREGS, thread, nullptr, &registers);
      ptrace(PTRACE_CONT, thread, nullptr, nullptr);
    }
  }

  bool Counts(pid_t thread, const Call& call, user_regs_struct& registers) {
    if (call.path == kNoPath && registers.rdi <= STDERR_FILENO) return false;
    if (intervention_.ofLooks) {
      return About(thread, call, registers).find(from_) != std::string::npos;
    }
    // Through a pipe of its own a sanitizer asks whether memory can be read; no machine has pipes.
    if (call.path == kNoPath && TargetOf(thread, registers.rdi).starts_with("pipe:")) return false;
    if (!counting_) counting_ = About(thread, call, registers).find(from_) != std::string::npos;
    return counting_;
  }

  static unsigned long long& Argument(user_regs_struct& registers, int index) {
    const std::array<unsigned long long*, 6> arguments = {&registers.rdi, &registers.rsi,
                                                          &registers.rdx, &registers.r10,
                                                          &registers.r8,  &registers.r9};
    return *arguments.at(static_cast<size_t>(index));
  }

  // What a descriptor of the child is open on.
  static std::string TargetOf(pid_t thread, unsigned long long descriptor) {
    std::array<char, PATH_MAX> target{};
    const std::string link =
        "/proc/" + std::to_string(thread) + "/fd/" + std::to_string(descriptor);
    const ssize_t length = readlink(link.c_str(), target.data(), target.size());
    return {target.data(), static_cast<size_t>(std::max<ssize_t>(length, 0))};
  }

  static std::string About(pid_t thread, const Call& call, user_regs_struct& registers) {
    std::string about;
    if (call.path == kNoPath) {
      about = TargetOf(thread, registers.rdi);
    } else {
      if (call.path > 0) about = TargetOf(thread, Argument(registers, call.path - 1));
      std::array<char, 512> text{};
      iovec mine{text.data(), text.size() - 1};
      // An address of the child's, and no pointer here.
      iovec theirs{nullptr, text.size() - 1};
      std::memcpy(&theirs.iov_base, &Argument(registers, call.path), sizeof theirs.iov_base);
      // Up to the end of the page when the text lies before one that is not there.
      if (process_vm_readv(thread, &mine, 1, &theirs, 1, 0) <= 0) {
        const size_t left = 4096 - Argument(registers, call.path) % 4096;
        mine.iov_len = theirs.iov_len = std::min(left, text.size() - 1);
        process_vm_readv(thread, &mine, 1, &theirs, 1, 0);
      }
      about.append(" ").append(text.data());
    }
    return std::string(call.name) + " " + about;
  }

  pid_t child_;
  Intervention intervention_;
  std::string from_;
  bool counting_;
  pid_t tearing_ = 0;  // the thread whose call is the last
  TracedRun run_;
};

std::string ReadAll(int descriptor) {
  std::string all;
  std::array<char, 4096> piece{};
  lseek(descriptor, 0, SEEK_SET);
  for (ssize_t count = 0; (count = read(descriptor, piece.data(), piece.size())) > 0;) {
    all.append(piece.data(), static_cast<size_t>(count));
  }
  return all;
}

}  // namespace

TracedRun RunTraced(const std::function<int()>& program, const Intervention& intervention,
                    std::string_view from) {
  const int output = memfd_create("output", 0);
  // What waits in the buffer would come out twice.
  std::cout.flush();
  const pid_t child = fork();
  if (child < 0 || output < 0) throw std::runtime_error("no child for the test");
  if (child == 0) RunChild(program, output, CallsOf(intervention));
  TracedRun run = Tracer(child, intervention, from).Run();
  run.output = ReadAll(output);
  close(output);
  return run;
}

std::string WhyNoTracing() {
  static const std::string reason = [] {
    try {
      const TracedRun run =
          RunTraced([] { return mkdir("/dev/null/no", 0700) == 0 || errno != EROFS ? 1 : 0; },
                    {.kind = Intervention::Kind::kFail, .at = 1, .error = EROFS});
      return run.exitCode == 0 ? std::string() : std::string("system calls cannot be traced here");
    } catch (const std::exception& error) {
      return std::string(error.what());
    }
  }();
  return reason;
}
#else
TracedRun RunTraced(const std::function<int()>&, const Intervention&, std::string_view) {
  throw std::runtime_error(WhyNoTracing());
}

std::string WhyNoTracing() { return "the tracer knows the calls of x86-64 alone"; }
#endif

int BecomeProgram(const std::vector<std::string>& words, const std::string& input) {
  const int in = memfd_create("input", 0);
  if (write(in, input.data(), input.size()) < 0 || lseek(in, 0, SEEK_SET) < 0) return -1;
  if (dup2(in, STDIN_FILENO) < 0) return -1;
  // The leak check would need the place of a tracer; what a sanitizer finds is told apart from what
  // the program says.
  if (setenv("ASAN_OPTIONS", "detect_leaks=0:exitcode=99", 1) != 0) return -1;
  if (setenv("UBSAN_OPTIONS", "halt_on_error=1:exitcode=99", 1) != 0) return -1;
  std::vector<char*> arguments;
  arguments.reserve(words.size() + 1);
  for (const std::string& word : words) arguments.push_back(const_cast<char*>(word.c_str()));
  arguments.push_back(nullptr);
  execv(arguments.front(), arguments.data());
  return -1;
}

void HeedPermissions() {
  for (const int right : {CAP_DAC_OVERRIDE, CAP_DAC_READ_SEARCH}) {
    prctl(PR_CAPBSET_DROP, right, 0, 0, 0);
  }
}

void CopyFolder(const std::string& from, const std::string& to) {
  std::filesystem::remove_all(to);
  const pid_t child = fork();
  if (child == 0) {
    execlp("cp", "cp", "-a", from.c_str(), to.c_str(), nullptr);
    _exit(127);
  }
  int status = 0;
  if (waitpid(child, &status, 0) != child || status != 0) {
    throw std::runtime_error("no copy of the machine");
  }
}

}  // namespace quarnel
