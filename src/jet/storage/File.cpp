#include "jet/storage/File.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <ctime>
#include <span>
#include <utility>

#include "jet/storage/Bytes.h"
#include "jet/storage/Rc4.h"
#include "platform/Fehler.h"

namespace wendel::jet {
namespace {

constexpr char kSource[] = "Datenbankdatei";
constexpr std::string_view kSignature("Standard Jet DB\0", 16);
constexpr std::array<std::uint8_t, 4> kHeaderKey = {0xC7, 0xDA, 0x39, 0x6B};
// The clock that stamps files moves in steps of up to 10 ms; network file systems are coarser.
constexpr std::int64_t kStampStepNs = 50'000'000;

std::int64_t nanoseconds(const timespec& t) { return std::int64_t{t.tv_sec} * 1'000'000'000 + t.tv_nsec; }

std::string quoted(const std::string& path) { return "'" + path + "'"; }

bool isFolder(const std::string& path) {
    struct stat info {};
    return ::stat(path.c_str(), &info) == 0 && S_ISDIR(info.st_mode);
}

std::string folderOf(const std::string& path) {
    const std::size_t slash = path.rfind('/');
    if (slash == std::string::npos) return ".";
    return slash == 0 ? "/" : path.substr(0, slash);
}

[[noreturn]] void throwOpenError(const std::string& path, int error) {
    if (error == ENOENT && isFolder(folderOf(path))) {
        throw Fehler(jetfehler::kFileNotFound, kSource,
                     "Die Datei " + quoted(path) + " wurde nicht gefunden.");
    }
    if (error == ENOENT || error == ENOTDIR || error == ENAMETOOLONG || error == ELOOP) {
        throw Fehler(
            jetfehler::kInvalidPath, kSource,
            quoted(path) + " ist kein zulässiger Pfad. Prüfen Sie, ob der Pfad richtig geschrieben ist.");
    }
    throw Fehler(
        jetfehler::kNoAccess, kSource,
        "Die Datei " + quoted(path) +
            " kann nicht geöffnet werden. Sie ist von einem anderen Benutzer exklusiv geöffnet, oder Sie "
            "haben keine Berechtigung, sie zu lesen.");
}

[[noreturn]] void throwUnknownFormat(const std::string& path) {
    throw Fehler(jetfehler::kUnknownFormat, kSource, "Nicht erkanntes Datenbankformat " + quoted(path) + ".");
}

// Fills the buffer; false when the file ends before or cannot be read.
bool readFully(int fd, std::span<std::uint8_t> buffer, std::uint64_t offset) {
    std::size_t done = 0;
    while (done < buffer.size()) {
        const ssize_t n =
            ::pread(fd, buffer.data() + done, buffer.size() - done, static_cast<off_t>(offset + done));
        if (n < 0 && errno == EINTR) continue;
        if (n <= 0) return false;
        done += static_cast<std::size_t>(n);
    }
    return true;
}

}  // namespace

File::File(const std::string& path, Access access, std::size_t cacheBytes)
    : path_(path), cacheBytes_(cacheBytes) {
    try {
        openAndCheck(access);
    } catch (...) {
        closeDescriptor();
        throw;
    }
}

File::~File() { closeDescriptor(); }

void File::closeDescriptor() {
    if (fd_ >= 0) ::close(fd_);
    fd_ = -1;
}

void File::openAndCheck(Access access) {
    // A pipe or a device in place of the file must neither block the open nor be read.
    constexpr int kFlags = O_CLOEXEC | O_NONBLOCK | O_NOCTTY;
    writable_ = access == Access::kReadWrite;
    if (writable_) fd_ = ::open(path_.c_str(), O_RDWR | kFlags);
    if (fd_ < 0) {
        writable_ = false;
        fd_ = ::open(path_.c_str(), O_RDONLY | kFlags);
    }
    if (fd_ < 0) throwOpenError(path_, errno);

    struct stat info {};
    if (::fstat(fd_, &info) != 0) throwOpenError(path_, errno);
    if (S_ISDIR(info.st_mode)) throwOpenError(path_, EISDIR);
    if (!S_ISREG(info.st_mode)) throwUnknownFormat(path_);
    rememberState(stateOf(info));
    readHeader();
}

File::State File::stateOf(const struct stat& info) {
    return {info.st_dev, info.st_ino, static_cast<std::uint64_t>(info.st_size), nanoseconds(info.st_mtim),
            nanoseconds(info.st_ctim)};
}

void File::rememberState(const State& state) {
    state_ = state;
    timespec now{};
    ::clock_gettime(CLOCK_REALTIME, &now);
    const std::int64_t age = nanoseconds(now) - std::max(state.modifiedNs, state.changedNs);
    stateUncertain_ = age < kStampStepNs;
}

void File::readHeader() {
    std::array<std::uint8_t, kHeaderMasked + kJet4Layout.maskedLength> header;
    if (!readFully(fd_, header, 0)) throwUnknownFormat(path_);
    const bool foreign =
        !std::equal(kSignature.begin(), kSignature.end(), header.begin() + kHeaderSignature,
                    [](char a, std::uint8_t b) { return static_cast<std::uint8_t>(a) == b; });
    if (foreign) throwUnknownFormat(path_);
    switch (header[kHeaderVersion]) {
        case static_cast<std::uint8_t>(Version::kJet3): layout_ = &kJet3Layout; break;
        case static_cast<std::uint8_t>(Version::kJet4): layout_ = &kJet4Layout; break;
        default: throwUnknownFormat(path_);  // versions from 2 on are those of .accdb files
    }
    rc4(kHeaderKey, std::span(header).subspan(kHeaderMasked, layout_->maskedLength));
    codePage_ = loadU16(&header[kHeaderCodePage]);
    pageKey_ = loadU32(&header[kHeaderPageKey]);
    const std::size_t order = layout_->headerSortOrder;
    sortOrder_.lcid = loadU16(&header[order]);
    sortOrder_.version = version() == Version::kJet4 ? header[order + 3] : std::uint8_t{0};

    const std::uint64_t pages = state_.size / layout_->pageSize;
    if (state_.size % layout_->pageSize != 0) throwDamaged("Die Datei ist abgeschnitten");
    if (pages <= kCatalogPage || pages > kMaxPages) throwUnknownFormat(path_);
    pageCount_ = static_cast<std::uint32_t>(pages);
    cacheSlots_ = std::max<std::size_t>(cacheBytes_ / layout_->pageSize, 4);
}

bool File::changed() const {
    struct stat info {};
    if (::stat(path_.c_str(), &info) != 0) return false;
    return stateUncertain_ || stateOf(info) != state_;
}

PagePtr File::page(std::uint32_t number) {
    ++pagesRequested_;
    const auto found = cached_.find(number);
    if (found != cached_.end()) {
        cache_.splice(cache_.begin(), cache_, found->second);
        return found->second->page;
    }
    PagePtr fresh = readPage(number);
    cache_.push_front({number, fresh});
    cached_[number] = cache_.begin();
    return fresh;
}

// The buffer of the page that was not used for longest, unless somebody still holds it.
std::shared_ptr<Page> File::freeBuffer() {
    if (cache_.size() >= cacheSlots_) {
        PagePtr old = std::move(cache_.back().page);
        cached_.erase(cache_.back().number);
        cache_.pop_back();
        if (old.use_count() == 1 && old->size() == layout_->pageSize)
            return std::const_pointer_cast<Page>(old);
    }
    return std::make_shared<Page>(layout_->pageSize);
}

PagePtr File::readPage(std::uint32_t number) {
    if (number >= pageCount_) throwDamaged("Seite " + std::to_string(number) + " fehlt");
    std::shared_ptr<Page> buffer = freeBuffer();
    ++pagesRead_;
    if (!readFully(fd_, *buffer, std::uint64_t{number} * layout_->pageSize)) {
        throwDamaged("Seite " + std::to_string(number) + " ist nicht lesbar");
    }
    if (pageKey_ != 0 && number != 0) {
        const std::uint32_t key = pageKey_ ^ number;
        const std::array<std::uint8_t, 4> bytes = {
            static_cast<std::uint8_t>(key), static_cast<std::uint8_t>(key >> 8),
            static_cast<std::uint8_t>(key >> 16), static_cast<std::uint8_t>(key >> 24)};
        rc4(bytes, *buffer);
    }
    return buffer;
}

void File::throwDamaged(std::string_view what) const {
    throw Fehler(jetfehler::kDamaged, kSource,
                 "Die Datenbank " + quoted(path_) + " kann nicht gelesen werden. Sie ist beschädigt (" +
                     std::string(what) + ").");
}

}  // namespace wendel::jet
