// The tree's memory. Keys, value arrays and the bytes of long names and values are small and come
// and go by the hundred thousand when a large tree is loaded or cleared: they are carved from
// chunks and kept on free lists by size, which costs a few instructions where the heap would
// search and merge. Large blocks go on large pages, where the system offers them.
#include "settings/virtual_registry_memory.h"

#include <algorithm>
#include <cstdint>
#include <vector>

#include "platform/process_object.h"
#include "platform/win32.h"

namespace {

constexpr size_t kLargePage = size_t(2) << 20;

size_t RoundedToLargePages(size_t bytes) { return (bytes + kLargePage - 1) / kLargePage * kLargePage; }

void* LargeBlock(size_t bytes) {
    void* block = ::operator new(RoundedToLargePages(bytes), std::align_val_t(kLargePage));
    ZelPlatformPreferLargePages(block, RoundedToLargePages(bytes));
    return block;
}

// Free lists of blocks in steps of 16 bytes. A chunk is twice the one before, up to a large page,
// so that a small tree holds little and a large one lies on few pages. Once no block is in use
// the chunks go back.
class SmallBlocks {
public:
    static constexpr size_t kGrain = 16;
    static constexpr size_t kLargest = 1024;

    constexpr SmallBlocks() = default;
    SmallBlocks(const SmallBlocks&) = delete;
    SmallBlocks& operator=(const SmallBlocks&) = delete;
    ~SmallBlocks() { ReleaseChunks(); }

    void* Take(size_t bytes) {
        const size_t step = StepOf(bytes);
        void* block = free_[step];
        if (block) {
            free_[step] = *static_cast<void**>(block);
        } else {
            const size_t size = step * kGrain;
            if (size_t(end_ - next_) < size) AddChunk();
            block = next_;
            next_ += size;
        }
        ++inUse_;
        return block;
    }

    void Give(void* block, size_t bytes) {
        const size_t step = StepOf(bytes);
        *static_cast<void**>(block) = free_[step];
        free_[step] = block;
        if (--inUse_ == 0) ReleaseChunks();
    }

private:
    static size_t StepOf(size_t bytes) { return std::max<size_t>(1, (bytes + kGrain - 1) / kGrain); }

    void AddChunk() {
        const size_t bytes = chunks_.empty() ? size_t(16) << 10 : std::min(kLargePage, chunks_.back().bytes * 2);
        chunks_.reserve(chunks_.size() + 1);
        void* block = bytes < kLargePage ? ::operator new(bytes) : LargeBlock(bytes);
        chunks_.push_back({block, bytes});
        next_ = static_cast<char*>(block);
        end_ = next_ + bytes;
    }

    void ReleaseChunks() {
        for (const Chunk& chunk : chunks_) {
            if (chunk.bytes < kLargePage) ::operator delete(chunk.block);
            else ::operator delete(chunk.block, std::align_val_t(kLargePage));
        }
        chunks_.clear();
        std::fill(std::begin(free_), std::end(free_), nullptr);
        next_ = end_ = nullptr;
    }

    struct Chunk {
        void* block;
        size_t bytes;
    };
    std::vector<Chunk> chunks_;
    void* free_[kLargest / kGrain + 1] = {};
    char* next_ = nullptr;
    char* end_ = nullptr;
    size_t inUse_ = 0;
};

constinit ZelProcessObject<SmallBlocks> smallBlocks;

// A sanitizer sees each block of the heap on its own; the free lists would hide a block used after
// its release.
#if defined(__SANITIZE_ADDRESS__)
constexpr bool kOwnFreeLists = false;
#elif defined(__has_feature)
#if __has_feature(address_sanitizer)
constexpr bool kOwnFreeLists = false;
#else
constexpr bool kOwnFreeLists = true;
#endif
#else
constexpr bool kOwnFreeLists = true;
#endif

}  // namespace

void VirtualRegPrepareMemory() { (void)*smallBlocks; }

void* VirtualRegAllocate(size_t bytes) {
    if (kOwnFreeLists && bytes <= SmallBlocks::kLargest) return smallBlocks->Take(bytes);
    if (bytes < kLargePage) return ::operator new(bytes);
    return LargeBlock(bytes);
}

void VirtualRegRelease(void* block, size_t bytes) {
    if (kOwnFreeLists && bytes <= SmallBlocks::kLargest) smallBlocks->Give(block, bytes);
    else if (bytes < kLargePage) ::operator delete(block);
    else ::operator delete(block, std::align_val_t(kLargePage));
}
