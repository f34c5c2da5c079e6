// Writes a hive, or the part of it that one file holds, in the layout that registry_format_read.cpp
// describes.
#include <cstring>

#include "platform/posix/registry/registry_format.h"
#include "platform/posix/registry/registry_format_layout.h"

namespace zelreg {
namespace {

class Writer {
public:
    // The first reservation also keeps g++'s overflow analysis from misreading the first inserts.
    explicit Writer(FileKind kind) : kind_(kind) { out_.reserve(4096); }

    void Header(uint64_t stamp) {
        size_t start = out_.size();
        out_.insert(out_.end(), kFileMagic, kFileMagic + 4);
        U32(kFormatVersion);
        U32(static_cast<uint32_t>(kind_));
        U32(0);
        U64(stamp);
        U32(Crc32(out_.data() + start, out_.size() - start));
    }

    // Writes key (at path) and what lies below it that this kind of file holds.
    void Walk(const RegKey& key, std::vector<std::u16string>& path) {
        bool emit = false;
        switch (kind_) {
            case FileKind::Persistent: emit = !key.isVolatile; break;
            case FileKind::Volatile: emit = key.isVolatile; break;
            case FileKind::Saved: emit = true; break;
        }
        // A persistent file stops at a volatile key: nothing below it is persistent.
        if (kind_ == FileKind::Persistent && key.isVolatile) return;
        if (emit) Key(key, path);
        for (const auto& [folded, sub] : key.subKeys) {
            path.push_back(sub->name);
            Walk(*sub, path);
            path.pop_back();
        }
    }

    std::vector<uint8_t> Take() { return std::move(out_); }

private:
    void Key(const RegKey& key, const std::vector<std::u16string>& path) {
        size_t start = BeginRecord(kKeyMarker);
        U64(key.id);
        U64(key.lastWrite);
        U32(key.isVolatile ? kKeyFlagVolatile : 0);
        Text(key.keyClass);
        std::u16string joined;
        for (size_t i = 0; i < path.size(); ++i) {
            if (i) joined += u'\\';
            joined += path[i];
        }
        Text(joined);
        EndRecord(start);
        for (const RegValue& value : key.values) {
            size_t valueStart = BeginRecord(kValueMarker);
            U64(key.id);
            U32(value.type);
            Text(value.name);
            U32(static_cast<uint32_t>(value.data.size()));
            out_.insert(out_.end(), value.data.begin(), value.data.end());
            EndRecord(valueStart);
        }
    }

    size_t BeginRecord(const uint8_t* marker) {
        size_t start = out_.size();
        out_.insert(out_.end(), marker, marker + 4);
        U32(0);  // the body's length, filled in by EndRecord
        return start;
    }

    void EndRecord(size_t start) {
        uint32_t length = static_cast<uint32_t>(out_.size() - start - kRecordHeaderSize);
        for (int i = 0; i < 4; ++i) out_[start + 4 + i] = static_cast<uint8_t>(length >> (8 * i));
        U32(Crc32(out_.data() + start, out_.size() - start));
    }

    void U32(uint32_t v) {
        for (int i = 0; i < 4; ++i) out_.push_back(static_cast<uint8_t>(v >> (8 * i)));
    }
    void U64(uint64_t v) {
        for (int i = 0; i < 8; ++i) out_.push_back(static_cast<uint8_t>(v >> (8 * i)));
    }
    void Text(const std::u16string& text) {
        U32(static_cast<uint32_t>(text.size()));
        for (char16_t unit : text) {
            out_.push_back(static_cast<uint8_t>(unit));
            out_.push_back(static_cast<uint8_t>(unit >> 8));
        }
    }

    FileKind kind_;
    std::vector<uint8_t> out_;
};

}  // namespace

std::vector<uint8_t> WriteHiveFile(const RegKey& top, FileKind kind, uint64_t stamp) {
    Writer writer(kind);
    writer.Header(stamp);
    std::vector<std::u16string> path;
    writer.Walk(top, path);
    return writer.Take();
}

}  // namespace zelreg
