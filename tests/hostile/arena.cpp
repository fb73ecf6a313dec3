#include "hostile/arena.h"

#include <algorithm>
#include <cstring>

namespace zorj::test {

Piece::Piece(std::string name, size_t bytes, size_t slack)
    : name_(std::move(name)), slack_(slack), memory_(slack + bytes, Placement::kAtEnd), allowed_(slack + bytes, 0) {
  std::memset(memory_.data(), kFiller, memory_.size());
}

const ZorAllocator* Arena::inUse_ = nullptr;

Arena::Arena() : allocator_{allocate, release, this}, outer_(inUse_) {
  inUse_ = &allocator_;
  zorSetAllocator(inUse_);
}

Arena::~Arena() {
  inUse_ = outer_;
  zorSetAllocator(inUse_);
}

Piece& Arena::add(const std::string& name, size_t bytes, size_t slack) {
  return *pieces_.emplace_back(std::make_unique<Piece>(name, bytes, slack));
}

void Arena::keep() {
  kept_ = pieces_.size();
  for (const auto& piece : pieces_) {
    const uint8_t* const data = piece->memory_.data();
    piece->initial_.assign(data, data + piece->memory_.size());
  }
}

void Arena::restore() {
  pieces_.resize(kept_);
  releasedUnknown_ = false;
  for (const auto& piece : pieces_) {
    std::memcpy(piece->memory_.data(), piece->initial_.data(), piece->initial_.size());
    piece->live_ = true;
  }
}

Arena::Contents Arena::contents() const {
  Contents all;
  for (size_t i = 0; i < kept_; ++i) {
    const GuardedMemory& memory = pieces_[i]->memory_;
    all.emplace_back(memory.data(), memory.data() + memory.size());
  }
  return all;
}

std::string Arena::changed(const Contents& before, Bytes bytes) const {
  for (size_t i = 0; i < kept_; ++i) {
    const Piece& piece = *pieces_[i];
    if (!piece.live_ || (bytes == Bytes::kPublic && piece.isPrivate_)) continue;
    const uint8_t* const now = piece.memory_.data();
    if (std::memcmp(now, before[i].data(), before[i].size()) == 0) continue;
    for (size_t at = 0; at < before[i].size(); ++at) {
      if (now[at] == before[i][at] || (bytes == Bytes::kForbidden && piece.allowed_[at])) continue;
      return piece.name_ + " at byte " +
             std::to_string(static_cast<ptrdiff_t>(at) - static_cast<ptrdiff_t>(piece.slack_));
    }
  }
  return {};
}

int Arena::liveAllocations() const {
  int live = 0;
  for (size_t i = 0; i < pieces_.size(); ++i) {
    if (i >= kept_) {
      live += pieces_[i]->live_;
    } else {
      live -= pieces_[i]->fromLibrary_ && !pieces_[i]->live_;
    }
  }
  return live;
}

void* Arena::allocate(size_t bytes, size_t alignment, void* context) {
  constexpr size_t kMost = size_t{1} << 26;
  auto& arena = *static_cast<Arena*>(context);
  if (bytes > kMost || arena.allocationToFail_-- == 0) return nullptr;
  // So that it ends at the inaccessible page and is aligned all the same, as far as the two agree.
  const size_t rounded = (bytes + alignment - 1) / alignment * alignment;
  Piece& piece = arena.add("allocated memory", rounded, 0);
  piece.fromLibrary_ = true;
  piece.allowAll();
  piece.makePrivate();
  return piece.data();
}

void Arena::release(void* memory, void* context) {
  auto& arena = *static_cast<Arena*>(context);
  for (const auto& piece : arena.pieces_) {
    if (piece->data() != memory || !piece->live_ || !piece->fromLibrary_) continue;
    piece->live_ = false;
    return;
  }
  arena.releasedUnknown_ = true;
}

}  // namespace zorj::test
