#include "jet/storage/File.h"

#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <ctime>
#include <stdexcept>
#include <utility>

#include "jet/storage/Bytes.h"
#include "jet/storage/Journal.h"
#include "jet/storage/Rc4.h"
#include "platform/Fehler.h"

namespace wendel::jet {
namespace {

using Result = FileLocks::Result;

constexpr char kSource[] = "Datenbankdatei";
constexpr std::string_view kSignature("Standard Jet DB\0", 16);
// The clock that stamps files moves in steps of up to 10 ms; network file systems are coarser.
constexpr std::int64_t kStampStepNs = 50'000'000;
constexpr std::int64_t kMostClockSkewNs = 60'000'000'000;
constexpr SortOrder kGeneral = {0x0409, 0};
constexpr int kMostReplacements = 100;

std::int64_t nowNs() {
    timespec now{};
    ::clock_gettime(CLOCK_REALTIME, &now);
    return std::int64_t{now.tv_sec} * 1'000'000'000 + now.tv_nsec;
}

// Whether a file written now could get this time as well. Not when it is far ahead, as copying from a system
// with another clock leaves it.
bool mayRecur(std::int64_t timeNs) {
    const std::int64_t age = nowNs() - timeNs;
    return age < kStampStepNs && age > -kMostClockSkewNs;
}

bool sameFile(const struct stat& info, const FileStamp& stamp) {
    return info.st_dev == stamp.device && info.st_ino == stamp.inode;
}

bool statPath(const std::string& path, struct stat& info) { return ::stat(path.c_str(), &info) == 0; }

}  // namespace

// --- Opening and closing -----------------------------------------------------------------------------------

File::File(const std::string& path, Access access, std::size_t cacheBytes, Opening opening)
    : path_(path), cacheBytes_(cacheBytes) {
    try {
        openAndCheck(access, opening);
    } catch (...) {
        if (fd_ >= 0) ::close(fd_);
        throw;
    }
}

File::~File() {
    leave();
    ::close(fd_);
}

void File::openAndCheck(Access access, Opening opening) {
    openDescriptor(access, opening);
    kept_ = opening;
    if (opening == Opening::kWriting)
        statement_ = std::make_unique<Statement>();
    else
        readings_ = 1;
    adoptJournal();
    readHeader();
    writable_ = descriptorWritable_ && !encoded() && sortOrder_ == kGeneral;
    if (writable_) lockFile_.enter(resolvedPath(path_), rights_);
    if (opening == Opening::kDone) endReading();
    if (opening != Opening::kWriting) return;
    requireWritable(writable_);
    statement_->pageCountBefore = pageCount_;
    locks_.tryExclusive(LockPlace::kWriter, lockFile_.slot());  // tells others who it is
}

// Another file may take the name between opening and locking; then the lock would guard nothing.
void File::openDescriptor(Access access, Opening opening) {
    for (int replacements = 0;; ++replacements) {
        const OpenedFile opened = openFile(path_, access == Access::kReadWrite);
        fd_ = opened.fd;
        descriptorWritable_ = opened.writable;
        locks_ = FileLocks(fd_);
        if (locks_.waitShared(LockPlace::kUsers) == Result::kBusy) throwCannotLock(path_);
        if (opening == Opening::kWriting)
            lockWriter();
        else
            lockReaders();
        rememberStamp();
        struct stat info {};
        if (!statPath(path_, info) || sameFile(info, stamp_)) return;
        if (replacements == kMostReplacements) throwCannotLock(path_);
        ::close(std::exchange(fd_, -1));
    }
}

void File::rememberStamp() {
    struct stat info {};
    if (::fstat(fd_, &info) != 0) throwDamaged("Die Datei ist nicht lesbar");
    stamp_ = stampOf(info);
    rights_ = rightsOf(info);
    stampUncertain_ =
        (mayRecur(stamp_.modifiedNs) || mayRecur(stamp_.changedNs)) && !(journal_ && journal_->knows(stamp_));
}

void File::adoptJournal() {
    journal_ = std::make_unique<Journal>(resolvedPath(path_));
    journal_->open();
    rememberStamp();
    if (!journal_->fits(fd_, stamp_))
        journal_->disregard();
    else if (!journal_->empty() && alone())
        checkpoint();
}

// For the moment: nobody else has the file open.
bool File::alone() {
    if (!descriptorWritable_ || locks_.tryExclusive(LockPlace::kUsers) != Result::kGot) return false;
    locks_.tryShared(LockPlace::kUsers);
    return true;
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
    cache_.setSlots(cachePages());
    if (journal_->pageSize() != layout_->pageSize && !journal_->empty()) journal_->disregard();
    overlayHeader(header);
    rc4(kHeaderMaskKey, std::span(header).subspan(kHeaderMasked, layout_->maskedLength));
    codePage_ = loadU16(&header[kHeaderCodePage]);
    pageKey_ = loadU32(&header[kHeaderPageKey]);
    const std::size_t order = layout_->headerSortOrder;
    sortOrder_.lcid = loadU16(&header[order]);
    sortOrder_.version = version() == Version::kJet4 ? header[order + 3] : std::uint8_t{0};

    const bool cut = journal_->empty() && stamp_.size % layout_->pageSize != 0;
    if (cut) throwDamaged("Die Datei ist abgeschnitten");
    const std::uint64_t pages = journal_->empty() ? stamp_.size / layout_->pageSize : journal_->pageCount();
    if (pages <= kCatalogPage || pages > kMaxPages) throwUnknownFormat(path_);
    pageCount_ = static_cast<std::uint32_t>(pages);
}

std::size_t File::cachePages() const { return std::max<std::size_t>(cacheBytes_ / layout_->pageSize, 4); }

// What a statement changed in page 0 and nobody wrote into the file yet.
void File::overlayHeader(std::span<std::uint8_t> header) const {
    Page page(layout_->pageSize);
    std::copy(header.begin(), header.end(), page.begin());
    if (!journal_->apply(0, page)) throwDamaged("Das Journal ist nicht lesbar");
    std::copy_n(page.begin(), header.size(), header.begin());
}

// The last user brings in what is left and takes away what was made beside the file.
void File::leave() {
    if (!inPlace() || !alone()) return;
    checkpoint();
    if (locks_.tryExclusive(LockPlace::kUsers) != Result::kGot) return;
    Journal last(resolvedPath(path_));
    try {
        last.open();
    } catch (const Fehler&) {
        return;  // not ours to remove
    }
    last.remove();
    lockFile_.remove();
}

bool File::inPlace() const {
    struct stat info {};
    return statPath(path_, info) && sameFile(info, stamp_);
}

// --- Locks and change --------------------------------------------------------------------------------------

void File::lockReaders() {
    if (locks_.waitShared(LockPlace::kReaders) == Result::kBusy) throwCannotLock(path_);
}

File::Reading::Reading(File& file) : file_(file) {
    if (file_.kept_ == Opening::kReading) {
        file_.kept_ = Opening::kDone;
        return;
    }
    if (file_.readings_ == 0) file_.lockReaders();
    ++file_.readings_;
}

File::Reading::~Reading() { file_.endReading(); }

void File::endReading() {
    if (--readings_ == 0) locks_.release(LockPlace::kReaders);
}

bool File::changed() const {
    if (statement_) return stampUncertain_ || statement_->overtaken;
    struct stat info {};
    return statPath(path_, info) && (stampUncertain_ || overtaken());
}

bool File::overtaken() const {
    struct stat info {};
    return !statPath(path_, info) || stampOf(info) != stamp_ || journal_->movedOn();
}

bool File::journalEmpty() const { return journal_->empty(); }

bool File::checkpoint() {
    if (!descriptorWritable_) return journal_->empty();
    const bool holdsWriter = statement_ != nullptr;
    if (holdsWriter && !statement_->committed) return false;
    if (journal_->empty() && !journal_->movedOn()) return true;
    if (!holdsWriter && locks_.tryExclusive(LockPlace::kWriter, lockFile_.slot()) != Result::kGot)
        return false;
    bool done = false;
    if (locks_.tryExclusive(LockPlace::kReaders) == Result::kGot) {
        done = bringJournalIn();
        if (readings_ > 0)
            locks_.tryShared(LockPlace::kReaders);
        else
            locks_.release(LockPlace::kReaders);
    }
    if (!holdsWriter) locks_.release(LockPlace::kWriter);
    return done;
}

bool File::bringJournalIn() {
    if (!overtaken()) {
        const bool done = journal_->bringInto(fd_);
        rememberStamp();
        stampUncertain_ = false;
        return done;
    }
    // Others have gone on since: their journal comes in, and this object stays with the old state.
    if (readings_ > 0 || !inPlace()) return false;
    Journal newest(resolvedPath(path_));
    try {
        newest.open();
    } catch (const Fehler&) {
        return false;
    }
    struct stat info {};
    return ::fstat(fd_, &info) == 0 && newest.fits(fd_, stampOf(info)) && newest.bringInto(fd_);
}

void File::throwLocked() const {
    const LockFile::User user = LockFile::user(resolvedPath(path_), locks_.holderOfWriter());
    const std::string by =
        user.computer.empty()
            ? "die Datenbank ist momentan durch einen anderen Benutzer gesperrt."
            : "momentane Sperrung durch Benutzer '" + user.name + "' auf Computer '" + user.computer + "'.";
    throw Fehler(jetfehler::kLockedByUser, kSource, "Aktualisieren nicht möglich; " + by);
}

// --- Statements --------------------------------------------------------------------------------------------

void File::requireWritable(bool writable) const {
    if (writable) return;
    throw Fehler(jetfehler::kReadOnly, kSource,
                 "Aktualisieren nicht möglich. Datenbank oder Objekt ist schreibgeschützt.");
}

void File::lockWriter() {
    requireWritable(descriptorWritable_);
    switch (locks_.waitExclusive(LockPlace::kWriter, lockFile_.slot())) {
        case Result::kBusy: throwLocked();
        case Result::kImpossible: throwCannotLock(path_);
        case Result::kGot: break;
    }
}

File::Writing::Writing(File& file) : file_(file) {
    if (file_.kept_ == Opening::kWriting) {
        file_.kept_ = Opening::kDone;
        return;
    }
    file_.requireWritable(file_.writable_);
    if (file_.statement_) throw std::logic_error("two statements at once");
    file_.lockWriter();
    auto statement = std::make_unique<Statement>();
    statement->pageCountBefore = file_.pageCount_;
    statement->overtaken = file_.overtaken();
    file_.statement_ = std::move(statement);
}

File::Writing::~Writing() {
    if (!file_.statement_->committed) file_.rollBack();
    file_.statement_.reset();
    file_.locks_.release(LockPlace::kWriter);
}

void File::Writing::commit(Durability durability) {
    file_.journalChanges();
    Statement& statement = *file_.statement_;
    if (statement.begun) file_.journal_->commit(file_.pageCount_, durability);
    statement.committed = true;
    for (auto& [number, changed] : statement.pages) {
        file_.cache_.erase(number);
        // Somebody who still holds the page might go on changing it.
        if (changed.page.use_count() == 1) file_.cache_.put(number, std::move(changed.page));
    }
    statement.pages.clear();
    if (file_.journal_->size() > kCheckpointBytes) file_.checkpoint();
}

File::Statement& File::changingStatement() {
    if (!statement_ || statement_->committed) throw std::logic_error("no statement");
    if (statement_->overtaken) throwLocked();
    return *statement_;
}

std::shared_ptr<Page> File::edit(std::uint32_t number) {
    Statement& statement = changingStatement();
    if (const auto found = statement.pages.find(number); found != statement.pages.end()) {
        found->second.lastUse = ++statement.uses;
        return found->second.page;
    }
    PagePtr before = page(number);
    auto copy = std::make_shared<Page>(*before);
    return changedPage(number, std::move(copy), std::move(before)).page;
}

std::shared_ptr<Page> File::replace(std::uint32_t number) {
    Statement& statement = changingStatement();
    if (number >= pageCount_) throwDamaged("Seite " + std::to_string(number) + " fehlt");
    if (const auto found = statement.pages.find(number); found != statement.pages.end()) {
        std::fill(found->second.page->begin(), found->second.page->end(), std::uint8_t{0});
        return found->second.page;
    }
    return changedPage(number, std::make_shared<Page>(layout_->pageSize), nullptr).page;
}

std::uint32_t File::appendPage() {
    changingStatement();
    if (pageCount_ >= kMaxPages) {
        throw Fehler(jetfehler::kDiskFull, kSource,
                     "Die Datenbank '" + path_ + "' hat ihre größte Länge erreicht.");
    }
    changedPage(pageCount_, std::make_shared<Page>(layout_->pageSize), nullptr);
    return pageCount_++;
}

File::Changed& File::changedPage(std::uint32_t number, std::shared_ptr<Page> page, PagePtr before) {
    makeRoom();
    Changed& changed = statement_->pages[number];
    changed = {std::move(page), std::move(before), ++statement_->uses};
    return changed;
}

// Those that were not used for longest leave memory, unless somebody holds them.
void File::makeRoom() {
    const std::size_t most = cachePages();
    if (statement_->pages.size() < most) return;
    std::vector<std::pair<std::uint64_t, std::uint32_t>> candidates;
    for (const auto& [number, changed] : statement_->pages)
        if (changed.page.use_count() == 1) candidates.push_back({changed.lastUse, number});
    std::sort(candidates.begin(), candidates.end());
    candidates.resize(std::min(candidates.size(), most / 2));
    beginRun();
    for (const auto& [lastUse, number] : candidates) {
        const Changed& changed = statement_->pages[number];
        const std::span<const std::uint8_t> before =
            changed.before ? std::span<const std::uint8_t>(*changed.before) : std::span<const std::uint8_t>();
        if (!changed.before || *changed.before != *changed.page)
            journal_->spill(number, *changed.page, before);
    }
    journal_->flush();
    for (const auto& [lastUse, number] : candidates) {
        statement_->pages.erase(number);
        cache_.erase(number);
    }
}

void File::beginRun() {
    if (statement_->begun) return;
    statement_->begun = true;
    journal_->begin({stamp_, !stampUncertain_, layout_->pageSize, rights_});
}

void File::journalChanges() {
    if (!statement_ || statement_->committed) throw std::logic_error("no statement");
    for (const auto& [number, changed] : statement_->pages) {
        if (changed.before && *changed.before == *changed.page) continue;
        beginRun();
        if (changed.before)
            journal_->add(number, *changed.page, *changed.before);
        else
            journal_->add(number, *changed.page, {});
    }
}

void File::rollBack() {
    if (statement_->begun) {
        if (journal_->anythingSpilled()) cache_.clear();
        journal_->abandon();
    }
    pageCount_ = statement_->pageCountBefore;
}

// --- Reading -----------------------------------------------------------------------------------------------

PagePtr File::page(std::uint32_t number) {
    ++pagesRequested_;
    if (statement_) {
        if (const auto found = statement_->pages.find(number); found != statement_->pages.end()) {
            found->second.lastUse = ++statement_->uses;
            return found->second.page;
        }
    }
    if (PagePtr cached = cache_.find(number)) return cached;
    PagePtr fresh = readPage(number);
    cache_.put(number, fresh);
    return fresh;
}

PagePtr File::readPage(std::uint32_t number) {
    if (number >= pageCount_) throwDamaged("Seite " + std::to_string(number) + " fehlt");
    std::shared_ptr<Page> buffer = cache_.buffer(layout_->pageSize);
    const bool read = journal_->spilled(number)
                          ? journal_->readSpilled(number, *buffer)
                          : (journal_->startsWhole(number) ||
                             readFully(fd_, *buffer, std::uint64_t{number} * layout_->pageSize)) &&
                                journal_->apply(number, *buffer);
    if (!read) throwDamaged("Seite " + std::to_string(number) + " ist nicht lesbar");
    if (pageKey_ != 0 && number != 0) {
        std::array<std::uint8_t, 4> key{};
        storeU32(key.data(), pageKey_ ^ number);
        rc4(key, *buffer);
    }
    return buffer;
}

void File::throwDamaged(std::string_view what) const {
    throw Fehler(jetfehler::kDamaged, kSource,
                 "Die Datenbank '" + path_ + "' kann nicht gelesen werden. Sie ist beschädigt (" +
                     std::string(what) + ").");
}

}  // namespace wendel::jet
