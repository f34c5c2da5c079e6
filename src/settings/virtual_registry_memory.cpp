// The tree's memory. Keys, value arrays and the bytes of long names and values are small and come
// and go by the hundred thousand when a large tree is loaded or cleared: they are carved from
// chunks and kept on free lists by size, which costs a few instructions where the heap would
// search and merge. Blocks of 2 MB and more come from the system, on large pages where it offers
// them.
#include "settings/virtual_registry_memory.h"

#include <algorithm>
#include <cstdint>
#include <vector>

#include "platform/process_object.h"
#include "platform/win32.h"

namespace {

constexpr size_t kLargePage = size_t(2) << 20;

// Free lists of blocks in steps of 16 bytes. Each size has chunks of its own, so that blocks of one
// kind (keys, say) lie together however the tree was built and cleared before: a tree made after
// another one was cleared is as dense as the first. A size's chunk is twice its last one, up to a
// large page, so that a small tree holds little and a large one lies on few pages. Once no block
// is in use the chunks go back.
class SmallBlocks {
public:
    static constexpr size_t kGrain = 16;
    static constexpr size_t kLargest = 1024;

    constexpr SmallBlocks() = default;
    SmallBlocks(const SmallBlocks&) = delete;
    SmallBlocks& operator=(const SmallBlocks&) = delete;
    ~SmallBlocks() { ReleaseChunks(); }

    void* Take(size_t bytes) {
        Size& size = sizes_[StepOf(bytes)];
        void* block = size.free;
        if (block) {
            size.free = *static_cast<void**>(block);
        } else {
            const size_t blockBytes = StepOf(bytes) * kGrain;
            if (size_t(size.end - size.next) < blockBytes) AddChunk(size, blockBytes);
            block = size.next;
            size.next += blockBytes;
        }
        ++inUse_;
        return block;
    }

    void Give(void* block, size_t bytes) {
        Size& size = sizes_[StepOf(bytes)];
        *static_cast<void**>(block) = size.free;
        size.free = block;
        if (--inUse_ == 0) ReleaseChunks();
    }

private:
    static constexpr size_t kFirstChunk = size_t(4) << 10;

    struct Size {
        void* free = nullptr;
        char* next = nullptr;
        char* end = nullptr;
        size_t lastChunk = 0;  // bytes
    };
    struct Chunk {
        void* block;
        size_t bytes;
    };

    static size_t StepOf(size_t bytes) { return std::max<size_t>(1, (bytes + kGrain - 1) / kGrain); }

    void AddChunk(Size& size, size_t blockBytes) {
        const size_t bytes = std::max(blockBytes, size.lastChunk ? std::min(kLargePage, size.lastChunk * 2) : kFirstChunk);
        chunks_.reserve(chunks_.size() + 1);
        void* block = bytes < kLargePage ? ::operator new(bytes) : ZelPlatformAllocateLargeBlock(bytes);
        chunks_.push_back({block, bytes});
        size.next = static_cast<char*>(block);
        size.end = size.next + bytes;
        size.lastChunk = bytes;
    }

    void ReleaseChunks() {
        for (const Chunk& chunk : chunks_) {
            if (chunk.bytes < kLargePage) ::operator delete(chunk.block);
            else ZelPlatformReleaseLargeBlock(chunk.block, chunk.bytes);
        }
        chunks_.clear();
        std::fill(std::begin(sizes_), std::end(sizes_), Size{});
    }

    std::vector<Chunk> chunks_;
    Size sizes_[kLargest / kGrain + 1] = {};
    size_t inUse_ = 0;
};

constinit ZelProcessObject<SmallBlocks> smallBlocks;

// A sanitizer sees each block of the heap on its own; the free lists and the system's blocks would
// hide a block used after its release or read past its end.
#if defined(__SANITIZE_ADDRESS__)
constexpr bool kOwnMemory = false;
#elif defined(__has_feature)
#if __has_feature(address_sanitizer)
constexpr bool kOwnMemory = false;
#else
constexpr bool kOwnMemory = true;
#endif
#else
constexpr bool kOwnMemory = true;
#endif

}  // namespace

void VirtualRegPrepareMemory() { (void)*smallBlocks; }

void* VirtualRegAllocate(size_t bytes) {
    if (!kOwnMemory) return ::operator new(bytes);
    if (bytes <= SmallBlocks::kLargest) return smallBlocks->Take(bytes);
    if (bytes < kLargePage) return ::operator new(bytes);
    return ZelPlatformAllocateLargeBlock(bytes);
}

void VirtualRegRelease(void* block, size_t bytes) {
    if (!kOwnMemory || (bytes > SmallBlocks::kLargest && bytes < kLargePage)) ::operator delete(block);
    else if (bytes <= SmallBlocks::kLargest) smallBlocks->Give(block, bytes);
    else ZelPlatformReleaseLargeBlock(block, bytes);
}
