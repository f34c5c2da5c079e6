// The iconv descriptors that each thread keeps open for the code pages it converts.
#include <iconv.h>

#include <bit>

#include "platform/posix/nls/codepage_convert.h"
#include "platform/posix/process/thread_object.h"

namespace zelcp {
namespace {

// ---------------------------------------------------------------------------------------------
// iconv descriptors, per thread: a descriptor carries conversion state and may not be shared.

constexpr const char* kWideName = std::endian::native == std::endian::little ? "UTF-16LE" : "UTF-16BE";

struct IconvCache {
    struct Entry {
        UINT codePage = 0;
        bool toWide = false;
        iconv_t cd = kNoDescriptor;
    };
    static constexpr size_t kSize = 8;
    Entry entries[kSize];
    size_t used = 0;
    size_t nextVictim = 0;

    ~IconvCache() {
        for (size_t i = 0; i < used; ++i) iconv_close(entries[i].cd);
    }
};

}  // namespace

iconv_t Descriptor(const ZelCodePage& page, bool toWide) {
    IconvCache& cache = ZelThreadObject<IconvCache>();
    for (size_t i = 0; i < cache.used; ++i) {
        const IconvCache::Entry& e = cache.entries[i];
        if (e.codePage == page.codePage && e.toWide == toWide) return e.cd;
    }
    iconv_t cd = toWide ? iconv_open(kWideName, page.iconvName) : iconv_open(page.iconvName, kWideName);
    if (cd == kNoDescriptor) return cd;
    size_t slot;
    if (cache.used < IconvCache::kSize) {
        slot = cache.used++;
    } else {
        slot = cache.nextVictim;
        cache.nextVictim = (cache.nextVictim + 1) % IconvCache::kSize;
        iconv_close(cache.entries[slot].cd);
    }
    cache.entries[slot] = {page.codePage, toWide, cd};
    return cd;
}

}  // namespace zelcp
