#include "exchange.h"

#include <fcntl.h>
#include <sys/mman.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <system_error>

namespace qal::ikcheck {

namespace {

// Before an answer. Nothing else begins with this and has the right length.
struct Head {
  char magic[8];
  std::uint64_t size;
};
constexpr Head kAnswered = {{'a', 'n', 's', 'w', 'e', 'r', 'e', 'd'}, 0};

// With a size that no process can change any more: reading what has been cut off would be a crash.
int MemoryFile(size_t size) {
  const int file = ::memfd_create("ikcheck", MFD_ALLOW_SEALING);
  if (file < 0 || ::ftruncate(file, static_cast<off_t>(size)) != 0 ||
      ::fcntl(file, F_ADD_SEALS, F_SEAL_SHRINK | F_SEAL_GROW | F_SEAL_SEAL) != 0) {
    throw std::system_error(errno, std::generic_category(), "memory for an answer");
  }
  return file;
}

}  // namespace

Exchange::Exchange() : Exchange(MemoryFile(kAnswerAt + kAnswerBytes)) {}

Exchange::Exchange(int file) : file_(file) {
  memory_ = ::mmap(nullptr, kAnswerAt + kAnswerBytes, PROT_READ | PROT_WRITE, MAP_SHARED, file, 0);
  if (memory_ == MAP_FAILED) {
    throw std::system_error(errno, std::generic_category(), "memory for an answer");
  }
}

Exchange::~Exchange() {
  (void)::munmap(memory_, kAnswerAt + kAnswerBytes);
  (void)::close(file_);
}

void Exchange::Enter() {
  entered_ = ::getpid();
  (void)::dup2(file_, STDOUT_FILENO);
  (void)::dup2(file_, STDERR_FILENO);
  // Unbuffered, so that what is written is there at once.
  (void)std::setvbuf(stdout, nullptr, _IONBF, 0);
  (void)::mprotect(At(kAnswerAt), kAnswerBytes, PROT_NONE);
}

void Exchange::NoteCall(const char* what, const Joints* joints, const Pose* pose) {
  Note& at = note();
  std::strncpy(at.what, what, sizeof(at.what) - 1);
  at.has_joints = joints != nullptr ? 1 : 0;
  at.has_pose = pose != nullptr ? 1 : 0;
  if (joints != nullptr) at.joints = *joints;
  if (pose != nullptr) at.pose = *pose;
  ++at.calls;
}

void Exchange::Answer(const Bytes& answer) {
  if (::getpid() == entered_ && answer.size() <= kAnswerBytes - sizeof(Head) &&
      ::mprotect(At(kAnswerAt), kAnswerBytes, PROT_READ | PROT_WRITE) == 0) {
    Head head = kAnswered;
    head.size = answer.size();
    std::memcpy(At(kAnswerAt + sizeof(Head)), answer.data(), answer.size());
    std::memcpy(At(kAnswerAt), &head, sizeof(head));
  }
  ::_exit(0);
}

std::string Exchange::Output() const {
  const auto* text = static_cast<const char*>(memory_);
  return {text, ::strnlen(text, kOutputBytes)};
}

CallNote Exchange::Call() const {
  const Note& at = note();
  CallNote call = {{at.what, ::strnlen(at.what, sizeof(at.what))}};
  if (at.has_joints != 0) call.joints = at.joints;
  if (at.has_pose != 0) call.pose = at.pose;
  return call;
}

std::optional<Bytes> Exchange::Answered() const {
  Head head;
  std::memcpy(&head, At(kAnswerAt), sizeof(head));
  if (std::memcmp(head.magic, kAnswered.magic, sizeof(head.magic)) != 0 ||
      head.size > kAnswerBytes - sizeof(head)) {
    return std::nullopt;
  }
  const auto* bytes = static_cast<const std::uint8_t*>(At(kAnswerAt + sizeof(head)));
  return Bytes(bytes, bytes + head.size);
}

}  // namespace qal::ikcheck
