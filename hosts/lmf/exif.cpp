#include "exif.h"

#include <algorithm>
#include <cstring>
#include <set>

namespace lmf::host {

namespace {

constexpr uint16_t kOrientation = 274;
constexpr uint16_t kExifDirectory = 34665;
constexpr uint16_t kGpsDirectory = 34853;
constexpr uint16_t kInteropDirectory = 40965;
constexpr int kDeepestDirectory = 3;
constexpr size_t kEntrySize = 12;

// What a TIFF file's first directory may say about the picture rather than about how the file is laid out.
constexpr uint16_t kDescriptive[] = {
    270,          271, 272,   kOrientation, 282,   283,   296,   305,   306,   315,   316,
    318,          319, 18246, 18249,        33432, 40091, 40092, 40093, 40094, 40095, kExifDirectory,
    kGpsDirectory};

bool IsDescriptive(uint16_t tag) {
    return std::find(std::begin(kDescriptive), std::end(kDescriptive), tag) != std::end(kDescriptive);
}

bool IsDirectory(uint16_t tag) {
    return tag == kExifDirectory || tag == kGpsDirectory || tag == kInteropDirectory;
}

// Reads numbers in the byte order of the block; beyond its end there are zeros.
struct TiffView {
    ByteView bytes;
    bool bigEndian = false;

    uint16_t U16(size_t at) const {
        if (at > bytes.size() || bytes.size() - at < 2) return 0;
        return bigEndian ? uint16_t(bytes[at] << 8 | bytes[at + 1]) : uint16_t(bytes[at + 1] << 8 | bytes[at]);
    }
    uint32_t U32(size_t at) const {
        const uint32_t first = U16(at);
        const uint32_t second = U16(at + 2);
        return bigEndian ? first << 16 | second : second << 16 | first;
    }
};

struct Entry {
    uint16_t tag = 0;
    uint16_t type = 0;
    uint32_t count = 0;
    Bytes value;                  // lowest byte first
    std::vector<Entry> directory; // of an entry that points to one
    bool inPlace = false;         // the value is the entry's own four bytes, whatever type and count say
};

size_t ElementSize(uint16_t type) {
    static constexpr uint8_t kSizes[] = {0, 1, 1, 2, 4, 8, 1, 1, 2, 4, 8, 4, 8, 4};
    return type < sizeof kSizes ? kSizes[type] : 0;
}

bool OpenTiff(ByteView bytes, TiffView &view) {
    if (bytes.size() < 8) return false;
    view.bytes = bytes;
    view.bigEndian = bytes[0] == 'M';
    const bool mark = (bytes[0] == 'I' && bytes[1] == 'I') || (bytes[0] == 'M' && bytes[1] == 'M');
    return mark && view.U16(2) == 42;
}

// Where the entry's value lies, or `bytes.size()` if it does not lie inside the block.
size_t ValueAt(const TiffView &view, size_t entry, size_t size) {
    const size_t at = size <= 4 ? entry + 8 : view.U32(entry + 8);
    return at <= view.bytes.size() && size <= view.bytes.size() - at ? at : view.bytes.size();
}

void TurnElements(uint16_t type, Bytes &value) {
    const size_t element = type == 5 || type == 10 ? 4 : ElementSize(type);
    for (size_t at = 0; at + element <= value.size(); at += element)
        std::reverse(value.begin() + std::ptrdiff_t(at), value.begin() + std::ptrdiff_t(at + element));
}

// Reads what the first directory says about the picture, and the directories below it whole. Each directory is visited
// once, and each tag counts once in it: the first entry that has a value.
struct DirectoryReader {
    const TiffView &view;
    // Entries and their values lie apart in an honest block, or share a value now and then. What reads more than the
    // block holds twice over is made of parts that overlap, and would take any amount of time and memory.
    size_t budget = 2 * view.bytes.size();
    std::set<size_t> visited = {};

    bool Afford(size_t bytes) {
        if (bytes > budget) return false;
        budget -= bytes;
        return true;
    }

    std::vector<Entry> Read(size_t at, int depth) {
        std::vector<Entry> entries;
        if (at + 2 > view.bytes.size() || !visited.insert(at).second) return entries;
        const size_t count = std::min<size_t>(view.U16(at), (view.bytes.size() - at - 2) / kEntrySize);
        std::set<uint16_t> seen;
        for (size_t i = 0; i < count && Afford(kEntrySize); ++i) {
            const size_t place = at + 2 + kEntrySize * i;
            Entry entry;
            entry.tag = view.U16(place);
            if (depth == 0 && !IsDescriptive(entry.tag)) continue;
            entry.type = view.U16(place + 2);
            entry.count = view.U32(place + 4);
            const size_t size = ElementSize(entry.type) * size_t(entry.count);
            const size_t value = ValueAt(view, place, size);
            if (size == 0 || value == view.bytes.size() || !Afford(size) || !seen.insert(entry.tag).second) continue;
            if (IsDirectory(entry.tag)) {
                if (depth < kDeepestDirectory) entry.directory = Read(view.U32(place + 8), depth + 1);
                if (entry.directory.empty()) continue;
                entry.type = 4;
                entry.count = 1;
            } else {
                entry.value.assign(view.bytes.begin() + std::ptrdiff_t(value),
                                   view.bytes.begin() + std::ptrdiff_t(value + size));
                if (view.bigEndian) TurnElements(entry.type, entry.value);
            }
            entries.push_back(std::move(entry));
        }
        return entries;
    }
};

std::vector<Entry> FirstDirectory(const TiffView &view) {
    return DirectoryReader{view}.Read(view.U32(4), 0);
}

void Put16(Bytes &out, size_t at, uint32_t value) {
    out[at] = uint8_t(value);
    out[at + 1] = uint8_t(value >> 8);
}

void Put32(Bytes &out, size_t at, uint32_t value) {
    Put16(out, at, value);
    Put16(out, at + 2, value >> 16);
}

// Appends a directory with its values and those below it. `origin` is the offset in the file of the first byte of
// `out`. Gives the directory's own offset.
uint32_t AppendDirectory(Bytes &out, uint32_t origin, std::vector<Entry> entries) {
    std::stable_sort(entries.begin(), entries.end(), [](const Entry &a, const Entry &b) { return a.tag < b.tag; });
    out.resize((out.size() + 1) & ~size_t{1});
    const size_t start = out.size();
    out.resize(start + 2 + kEntrySize * entries.size() + 4);
    Put16(out, start, uint32_t(entries.size()));
    size_t place = start + 2;
    for (Entry &entry : entries) {
        Put16(out, place, entry.tag);
        Put16(out, place + 2, entry.type);
        Put32(out, place + 4, entry.count);
        if (!entry.directory.empty()) {
            const uint32_t at = AppendDirectory(out, origin, std::move(entry.directory));
            Put32(out, place + 8, at);
        } else if (entry.inPlace || entry.value.size() <= 4) {
            std::copy(entry.value.begin(), entry.value.end(), out.begin() + std::ptrdiff_t(place + 8));
        } else {
            out.resize((out.size() + 1) & ~size_t{1});
            Put32(out, place + 8, origin + uint32_t(out.size()));
            out.insert(out.end(), entry.value.begin(), entry.value.end());
        }
        place += kEntrySize;
    }
    return origin + uint32_t(start);
}

void DropThumbnail(Bytes &exif) {
    const TiffView view{exif, exif[0] == 'M'};
    const size_t first = view.U32(4);
    const size_t link = first + 2 + kEntrySize * view.U16(first);
    // A block may end inside the link: then there is no second directory, and no room to clear the link in.
    if (link + 4 > exif.size()) return;
    const size_t second = view.U32(link);
    if (second == 0) return;
    // Offset and length of a compressed or of an uncompressed thumbnail.
    size_t at = 0;
    size_t size = 0;
    for (int i = 0; i < view.U16(second); ++i) {
        const size_t place = second + 2 + kEntrySize * size_t(i);
        const uint16_t tag = view.U16(place);
        if (tag == 513 || tag == 273) at = view.U32(place + 8);
        if (tag == 514 || tag == 279) size = view.U32(place + 8);
    }
    if (at < exif.size()) std::memset(exif.data() + at, 0, std::min(size, exif.size() - at));
    std::memset(exif.data() + link, 0, 4);
}

} // namespace

void SetExif(Picture &picture, ByteView block) {
    if (block.size() > 6 && std::memcmp(block.data(), "Exif\0\0", 6) == 0) block = block.subspan(6);
    TiffView view;
    if (!OpenTiff(block, view)) return;
    picture.exif.assign(block.begin(), block.end());
    DropThumbnail(picture.exif);
}

int ExifOrientation(ByteView exif) {
    TiffView view;
    if (!OpenTiff(exif, view)) return 0;
    for (const Entry &entry : FirstDirectory(view))
        if (entry.tag == kOrientation && entry.type == 3 && entry.value[0] >= 1 && entry.value[0] <= 8)
            return entry.value[0];
    return 0;
}

Bytes ExifFromTiff(ByteView file) {
    TiffView view;
    if (!OpenTiff(file, view)) return {};
    std::vector<Entry> entries = FirstDirectory(view);
    if (entries.empty()) return {};
    Bytes out = {'I', 'I', 42, 0, 8, 0, 0, 0};
    AppendDirectory(out, 0, std::move(entries));
    return out;
}

bool AddExifToTiff(std::FILE *file, ByteView exif) {
    TiffView view;
    if (!OpenTiff(exif, view)) return true;
    // The file is little-endian and was written a moment ago, so its directory needs no distrust.
    Bytes head(8);
    if (std::fseek(file, 0, SEEK_SET) != 0 || std::fread(head.data(), 1, 8, file) != 8) return false;
    const TiffView header{head, false};
    Bytes directory(2);
    if (std::fseek(file, long(header.U32(4)), SEEK_SET) != 0 || std::fread(directory.data(), 1, 2, file) != 2)
        return false;
    const size_t count = TiffView{directory, false}.U16(0);
    directory.resize(kEntrySize * count);
    if (std::fread(directory.data(), 1, directory.size(), file) != directory.size()) return false;

    const TiffView raw{directory, false};
    std::vector<Entry> entries;
    for (size_t i = 0; i < count; ++i) {
        const size_t place = kEntrySize * i;
        const auto value = directory.begin() + std::ptrdiff_t(place + 8);
        entries.push_back({raw.U16(place), raw.U16(place + 2), raw.U32(place + 4), Bytes(value, value + 4), {}, true});
    }
    for (Entry &entry : FirstDirectory(view)) {
        const bool present = std::any_of(entries.begin(), entries.begin() + std::ptrdiff_t(count),
                                         [&](const Entry &other) { return other.tag == entry.tag; });
        if (!present) entries.push_back(std::move(entry));
    }
    if (std::fseek(file, 0, SEEK_END) != 0) return false;
    const long end = std::ftell(file);
    if (end < 0 || end > 0x7FFF0000L) return false;
    Bytes added;
    if (end & 1) added.push_back(0);
    const uint32_t origin = uint32_t(end);
    // Directories begin at even offsets of the file, so an odd end is padded first and counted as part of it.
    Bytes tail;
    const uint32_t at = AppendDirectory(tail, origin + uint32_t(added.size()), std::move(entries));
    added.insert(added.end(), tail.begin(), tail.end());
    if (std::fwrite(added.data(), 1, added.size(), file) != added.size()) return false;
    Bytes pointer(4);
    Put32(pointer, 0, at);
    return std::fseek(file, 4, SEEK_SET) == 0 && std::fwrite(pointer.data(), 1, 4, file) == 4;
}

} // namespace lmf::host
