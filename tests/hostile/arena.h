// The memory of one call: every piece ends at an inaccessible page, is put back before each call, and tells afterwards
// what has changed.
#pragma once

#include <zorcore.h>

#include <memory>
#include <string>
#include <vector>

#include "support/guarded_memory.h"

namespace zorj::test {

inline constexpr uint8_t kFiller = 0xA5;

// A piece of memory. `slack` bytes before it let a pointer be moved down; nothing writes there.
class Piece {
 public:
  Piece(std::string name, size_t bytes, size_t slack);

  uint8_t* data() const { return memory_.data() + slack_; }
  size_t size() const { return memory_.size() - slack_; }
  const std::string& name() const { return name_; }
  // The bytes that a call may write; none at first.
  void allow(size_t at, size_t count) { std::fill_n(allowed_.begin() + static_cast<ptrdiff_t>(slack_ + at), count, 1); }
  void allowAll() { std::fill(allowed_.begin(), allowed_.end(), 1); }
  // Says that what a call leaves there is its own affair.
  void makePrivate() { isPrivate_ = true; }
  bool isPrivate() const { return isPrivate_; }

 private:
  friend class Arena;

  std::string name_;
  size_t slack_;
  GuardedMemory memory_;
  std::vector<uint8_t> allowed_;  // a flag for each byte
  std::vector<uint8_t> initial_;
  bool isPrivate_ = false;
  bool fromLibrary_ = false;  // it has been allocated by the library
  bool live_ = true;          // and not released
};

// Gives out memory, to the library too while it lives.
class Arena {
 public:
  Arena();
  ~Arena();
  Arena(const Arena&) = delete;
  Arena& operator=(const Arena&) = delete;

  Piece& add(const std::string& name, size_t bytes, size_t slack = 1);
  const std::vector<std::unique_ptr<Piece>>& pieces() const { return pieces_; }

  // Keeps all contents as those to begin with.
  void keep();
  // Brings them back, and takes back what the library has allocated since keep().
  void restore();

  using Contents = std::vector<std::vector<uint8_t>>;
  Contents contents() const;
  // The first byte that differs from `before`, as a text, among all, among those that a call may not write, or among
  // those of which it is told what a call leaves there.
  enum class Bytes { kAll, kForbidden, kPublic };
  std::string changed(const Contents& before, Bytes bytes) const;

  // The n-th allocation of the library from now on, from 0, is to fail; below 0 none.
  void failAllocation(int number) { allocationToFail_ = number; }
  // How many there have been since keep().
  int allocations() const { return static_cast<int>(pieces_.size() - kept_); }
  // What the library holds that it has allocated since keep(), less what it has released since.
  int liveAllocations() const;
  bool releasedUnknown() const { return releasedUnknown_; }

 private:
  static void* allocate(size_t bytes, size_t alignment, void* context);
  static void release(void* memory, void* context);

  std::vector<std::unique_ptr<Piece>> pieces_;
  size_t kept_ = 0;
  int allocationToFail_ = -1;
  bool releasedUnknown_ = false;
  ZorAllocator allocator_;
  static const ZorAllocator* inUse_;
  const ZorAllocator* outer_;
};

}  // namespace zorj::test
