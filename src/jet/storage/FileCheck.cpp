#include "jet/storage/FileCheck.h"

#include <algorithm>
#include <map>
#include <set>
#include <span>
#include <utility>

#include "jet/storage/Bytes.h"
#include "jet/storage/DataPage.h"
#include "jet/storage/IndexCheck.h"
#include "jet/storage/Table.h"
#include "jet/storage/UsageMap.h"
#include "platform/Fehler.h"

namespace wendel::jet {
namespace {

constexpr int kMaxMoves = 64;

using Bytes = std::span<const std::uint8_t>;

std::string number(std::uint64_t value) { return std::to_string(value); }
std::string place(std::uint32_t page, unsigned slot) { return number(page) + "/" + number(slot); }
// Without the name of the file, which every line would repeat.
std::string reasonOf(const Fehler& failure) {
    const std::string& text = failure.beschreibung();
    const std::size_t open = text.rfind('('), close = text.rfind(')');
    return open == std::string::npos || close < open ? text : text.substr(open + 1, close - open - 1);
}
std::uint64_t key(RowPointer p) { return std::uint64_t{p.page} << 8 | p.slot; }

// The frame of a row: which bits of the null mask are set, and where the variable values start. Taken apart
// without regard to what reading forgives.
struct Frame {
    Bytes bytes;
    std::size_t columns = 0, mask = 0;
    std::vector<std::size_t> starts;  // of the variable values; the end of data behind them
    std::string fault;

    bool present(std::size_t column) const {
        return column < columns && (bytes[mask + column / 8] >> (column % 8) & 1) != 0;
    }
    Bytes variable(std::size_t index) const {
        return index + 1 < starts.size() ? bytes.subspan(starts[index], starts[index + 1] - starts[index])
                                         : Bytes();
    }
};

void readStartsJet4(Frame& frame) {
    const std::size_t count = loadU16(&frame.bytes[frame.mask - 2]);
    if (frame.mask < 2 * count + 4) return;
    for (std::size_t k = 0; k <= count; ++k)
        frame.starts.push_back(loadU16(&frame.bytes[frame.mask - 4 - 2 * k]));
}

void readStartsJet3(Frame& frame) {
    const std::size_t count = frame.bytes[frame.mask - 1];
    std::size_t jumps = (frame.bytes.size() - 1) / 256;
    if (frame.mask < jumps + count + 2) return;
    const std::size_t first = frame.mask - 2 - jumps;
    const std::size_t jumpsAt = frame.mask - 2;
    if ((first - count) / 256 < jumps) --jumps;
    std::size_t high = 0;
    for (std::size_t k = 0; k <= count; ++k) {
        while (high < jumps && frame.bytes[jumpsAt - high] == k)
            ++high;
        frame.starts.push_back(frame.bytes[first - k] + 256 * high);
    }
}

Frame takeApart(const Layout& layout, const TableDef& table, Bytes bytes) {
    Frame frame;
    frame.bytes = bytes;
    const std::size_t countSize = layout.rowCountSize;
    const bool jet4 = layout.version == Version::kJet4;
    if (bytes.size() < countSize + 1) return frame.fault = "zu kurz", frame;
    frame.columns = jet4 ? loadU16(bytes.data()) : bytes[0];
    const std::size_t maskSize = (frame.columns + 7) / 8;
    if (frame.columns > table.maxColumns) return frame.fault = "zu viele Spalten", frame;
    if (bytes.size() < countSize + maskSize) return frame.columns = 0, frame.fault = "zu kurz", frame;
    frame.mask = bytes.size() - maskSize;
    if (frame.columns % 8 != 0 && bytes.back() >> (frame.columns % 8) != 0)
        frame.fault = "Bits hinter der Nullmaske";
    if (table.firstVariableNumber >= frame.columns) return frame;
    if (frame.mask < countSize + 4) return frame.fault = "zu kurz", frame;
    jet4 ? readStartsJet4(frame) : readStartsJet3(frame);
    if (frame.starts.empty() || frame.starts.front() < countSize || frame.starts.back() > frame.mask ||
        !std::is_sorted(frame.starts.begin(), frame.starts.end())) {
        frame.fault = "Verzeichnis der Werte";
        frame.starts.clear();
    }
    return frame;
}

class FileChecker {
  public:
    explicit FileChecker(Database& database)
        : database_(database),
          file_(database.file()),
          layout_(file_.layout()),
          owners_(file_.pageCount()),
          free_(file_.pageCount()) {}

    std::vector<std::string> run() {
        own(0, "Kopf");
        own(kGlobalMapPage, "Gesamtliste");
        guarded("Gesamtliste", [&] { readGlobalMap(); });
        for (const CatalogEntry& entry : database_.entries())
            guarded("Tabelle " + entry.name, [&] { checkTable(*database_.table(entry.name)); });
        guarded("Seitenlisten", [&] { checkMapPages(); });
        for (std::uint32_t page = 0; page < owners_.size(); ++page) {
            if (owners_[page].empty() && !free_[page]) report("Seite " + number(page) + " gehört niemandem");
            if (!owners_[page].empty() && free_[page])
                report("Seite " + number(page) + " ist frei und gehört zu " + owners_[page]);
        }
        return std::move(findings_);
    }

  private:
    void report(std::string finding) { findings_.push_back(std::move(finding)); }

    template <class Part>
    void guarded(const std::string& what, const Part& part) {
        try {
            part();
        } catch (const Fehler& failure) {
            report(what + ": " + reasonOf(failure));
        }
    }

    void own(std::uint32_t page, const std::string& owner) {
        if (page >= owners_.size()) {
            report("Seite " + number(page) + " von " + owner + " liegt hinter dem Dateiende");
        } else if (!owners_[page].empty()) {
            report("Seite " + number(page) + " gehört zu " + owners_[page] + " und zu " + owner);
        } else {
            owners_[page] = owner;
        }
    }

    void readGlobalMap() {
        const std::set<std::uint32_t> all = readMapPages({kGlobalMapPage, 0}, "Gesamtliste");
        readMapPages({kGlobalMapPage, 1}, "zweite Gesamtliste");
        for (const std::uint32_t page : all) {
            if (page < free_.size()) free_[page] = true;
        }
        const PagePtr page = file_.page(kGlobalMapPage);
        const Bytes row = DataPage(file_, *page).row(0);
        if (row.empty() || row[0] != kUsageInline) return;
        const std::uint64_t first = loadU32(&row[1]), end = first + 8 * (row.size() - kUsageInlineHead);
        for (std::uint64_t behind = std::max<std::uint64_t>(first, file_.pageCount()); behind < end;
             ++behind) {
            if (behind < kMaxPages && !all.contains(static_cast<std::uint32_t>(behind)))
                return report("Gesamtliste: Seite " + number(behind) +
                              " hinter dem Dateiende ist nicht frei");
        }
    }

    // The pages of a map; the pages that the map itself lies on are claimed on the way.
    std::set<std::uint32_t> readMapPages(RowPointer map, const std::string& owner) {
        const PagePtr page = file_.page(map.page);
        const DataPage data(file_, *page);
        const Bytes row = data.row(map.slot);
        if (data.flags(map.slot) != 0) report(owner + ": Liste in gelöschter Zeile");
        if (!mapRows_.insert(key(map)).second)
            report(owner + ": Liste " + place(map.page, map.slot) + " doppelt");
        const std::uint64_t perBitmap = (layout_.pageSize - kBitmapPageBits) * 8;
        if (!row.empty() && row[0] == kUsageReference) {
            for (std::size_t k = 0; 4 * k + 5 <= row.size() && k * perBitmap < file_.pageCount(); ++k) {
                const std::uint32_t bitmap = loadU32(&row[1 + 4 * k]);
                if (bitmap != 0 && bitmap < 0x80000000) own(bitmap, "Liste von " + owner);
            }
        }
        std::set<std::uint32_t> pages;
        for (const std::uint32_t listed : readUsageMap(file_, map))
            pages.insert(listed);
        return pages;
    }

    void checkMapPages() {
        std::set<std::uint32_t> pages;
        for (const std::uint64_t row : mapRows_)
            pages.insert(static_cast<std::uint32_t>(row >> 8));
        for (const std::uint32_t number_ : pages) {
            if (number_ != kGlobalMapPage) own(number_, "Seitenlisten");
            const PagePtr page = file_.page(number_);
            checkSlots(number_, *page);
            const DataPage data(file_, *page);
            for (unsigned slot = 0; slot < data.slotCount(); ++slot) {
                const RowPointer row{number_, static_cast<std::uint8_t>(slot)};
                if (data.flags(slot) == 0 && !mapRows_.contains(key(row)))
                    report("Seitenliste " + place(number_, slot) + " gehört niemandem");
            }
        }
    }

    // Frame of a data page: slots in order, free space exact.
    void checkSlots(std::uint32_t number_, const Page& page) {
        const DataPage data(file_, page);
        const std::size_t slotsEnd = layout_.dataSlots + 2 * std::size_t{data.slotCount()};
        std::size_t lowest = layout_.pageSize;
        for (unsigned slot = 0; slot < data.slotCount(); ++slot) {
            data.row(slot);  // throws when out of order
            lowest = data.rowStart(slot);
        }
        const std::size_t noted = loadU16(&page[2]);
        if (noted != lowest - slotsEnd)
            report("Seite " + number(number_) + ": freier Platz " + number(noted) + " statt " +
                   number(lowest - slotsEnd));
    }

    void checkTable(const TableDef& table) {
        const std::string name = table.name;
        checkDefinitionPages(table);
        std::set<std::uint32_t> owned;
        guarded(name, [&] {
            owned = readMapPages(table.ownedPages, name);
            const std::set<std::uint32_t> withSpace =
                readMapPages(table.freeSpacePages, name + " (mit Platz)");
            if (!std::includes(owned.begin(), owned.end(), withSpace.begin(), withSpace.end()))
                report(name + ": Seite mit Platz gehört nicht zur Tabelle");
        });
        for (const std::uint32_t page : owned)
            own(page, name);
        for (const Column& column : table.columns)
            if (column.isLong()) guarded(name + "." + column.name, [&] { readLongMaps(table, column); });
        guarded(name, [&] { checkRows(table, owned); });
        for (const Column& column : table.columns)
            if (column.isLong()) guarded(name + "." + column.name, [&] { checkLongPages(table, column); });
        std::set<std::uint32_t> roots;
        for (const Index& index : table.indexes) {
            if (!roots.insert(index.root).second) continue;  // another name for the same tree
            guarded(name + "." + index.name, [&] { checkTree(table, index); });
            if (index.searchable) guarded(name + "." + index.name, [&] { checkIndex(file_, table, index); });
        }
        longValues_.clear();
    }

    void checkDefinitionPages(const TableDef& table) {
        std::size_t room = 0;
        const std::uint32_t length = loadU32(&(*file_.page(table.page))[kDefinitionLength]);
        for (std::uint32_t page = table.page; page != 0;) {
            own(page, "Definition von " + table.name);
            room += layout_.pageSize - (page == table.page ? 0 : kDefinitionContinuation);
            const std::uint32_t next = loadU32(&(*file_.page(page))[kDefinitionNext]);
            if ((next != 0) != (length > room)) return report(table.name + ": Länge der Definition");
            page = next;
        }
    }

    void checkRows(const TableDef& table, const std::set<std::uint32_t>& owned) {
        std::set<std::uint64_t> targets, reached;
        std::uint32_t rows = 0;
        for (const std::uint32_t number_ : owned) {
            const PagePtr page = file_.page(number_);
            const DataPage data(file_, *page);
            if (!data.isDataOf(table.page)) {
                report(table.name + ": Seite " + number(number_) + " ist keine Datenseite der Tabelle");
                continue;
            }
            guarded(table.name, [&] { checkSlots(number_, *page); });
            for (unsigned slot = 0; slot < data.slotCount(); ++slot) {
                const RowPointer here{number_, static_cast<std::uint8_t>(slot)};
                if (data.flags(slot) == kSlotTarget) targets.insert(key(here));
                if ((data.flags(slot) & kSlotTarget) != 0) continue;
                ++rows;
                guarded(table.name + " " + place(number_, slot),
                        [&] { checkRow(table, here, reached, owned); });
            }
        }
        for (const std::uint64_t target : targets) {
            if (!reached.contains(target))
                report(table.name + ": verlassene Zeile " +
                       place(static_cast<std::uint32_t>(target >> 8), target & 0xFF));
        }
        if (rows != table.rowCount)
            report(table.name + ": " + number(table.rowCount) + " Zeilen vermerkt, " + number(rows) +
                   " gefunden");
    }

    void checkRow(const TableDef& table, RowPointer home, std::set<std::uint64_t>& reached,
                  const std::set<std::uint32_t>& owned) {
        RowPointer at = home;
        PagePtr page = file_.page(at.page);
        for (int moves = 0; DataPage(file_, *page).flags(at.slot) & kSlotPointer; ++moves) {
            at = loadRowPointer(DataPage(file_, *page).row(at.slot).data());
            page = file_.page(at.page);
            if (!owned.contains(at.page) || !reached.insert(key(at)).second || moves == kMaxMoves)
                file_.throwDamaged("Verschobene Zeile");
            if ((DataPage(file_, *page).flags(at.slot) & kSlotTarget) == 0 ||
                DataPage(file_, *page).flags(at.slot) == kSlotDeleted)
                file_.throwDamaged("Verschobene Zeile");
        }
        const DataPage data(file_, *page);
        const Frame frame = takeApart(layout_, table, data.row(at.slot));
        const std::string where = table.name + " " + place(home.page, home.slot);
        if (!frame.fault.empty()) report(where + ": " + frame.fault);
        checkValues(table, frame, where);
    }

    void checkValues(const TableDef& table, const Frame& frame, const std::string& where) {
        for (const Column& column : table.columns) {
            const bool null = !frame.present(column.number);
            if (column.fixed || column.type == ColumnType::kBoolean) {
                const std::int64_t value = column.autonumber && column.type == ColumnType::kLong && !null
                                               ? static_cast<std::int32_t>(loadU32(
                                                     &frame.bytes[layout_.rowCountSize + column.fixedOffset]))
                                               : 0;
                if (value > static_cast<std::int32_t>(table.lastAutonumber))
                    report(where + ": Zählwert " + std::to_string(value) + " über dem letzten");
                continue;
            }
            const Bytes bytes = frame.variable(column.variableIndex);
            if (null && !bytes.empty()) report(where + "." + column.name + ": Null mit Inhalt");
            if (null || frame.starts.empty() || column.variableIndex + 1u >= frame.starts.size()) continue;
            if (column.isLong()) {
                guarded(where + "." + column.name, [&] { followLongValue(table, column, bytes); });
            } else if (column.length != 0 && bytes.size() > column.length + (column.compressible ? 2u : 0u)) {
                report(where + "." + column.name + ": länger als die Spalte");
            }
        }
    }

    // Some writers leave pointers to nothing in long columns, whose pages then are in no map.
    bool isMap(RowPointer map) const {
        if (map.page == 0 || map.page >= file_.pageCount()) return false;
        const PagePtr page = file_.page(map.page);
        const DataPage data(file_, *page);
        return data.isDataOf(0) && map.slot < data.slotCount() && data.flags(map.slot) == 0;
    }

    void readLongMaps(const TableDef& table, const Column& column) {
        LongPages& pages = longValues_[column.number];
        if (!isMap(column.longValuePages) || !isMap(column.longValueFreePages)) return;
        const std::string owner = table.name + "." + column.name;
        pages.owned = readMapPages(column.longValuePages, owner);
        pages.withSpace = readMapPages(column.longValueFreePages, owner + " (mit Platz)");
        pages.mapped = true;
        for (const std::uint32_t page : pages.owned)
            own(page, owner);
    }

    // Notes the rows that the value lies in; each may belong to one value only.
    void followLongValue(const TableDef& table, const Column& column, Bytes reference) {
        if (reference.size() < kLongValueReferenceSize) file_.throwDamaged("Langer Wert");
        const std::uint32_t head = loadU32(reference.data());
        const std::size_t length = head & kLongValueLengthMask;
        RowPointer part = loadRowPointer(&reference[4]);
        if ((head & kLongValueInline) != 0) {
            if (reference.size() != kLongValueReferenceSize + length)
                file_.throwDamaged("Langer Wert in der Zeile");
            return;
        }
        if (reference.size() != kLongValueReferenceSize) file_.throwDamaged("Verweis auf langen Wert");
        const bool single = (head & kLongValueSingle) != 0;
        std::size_t found = 0;
        do {
            const Bytes row = takeLongRow(table, column, part, !single);
            if (!single && row.size() < kRowPointerSize) file_.throwDamaged("Kette eines langen Werts");
            found += row.size() - (single ? 0 : kRowPointerSize);
            part = single ? RowPointer{} : loadRowPointer(row.data());
        } while (part.page != 0);
        if (found != length) file_.throwDamaged("Länge eines langen Werts");
    }

    Bytes takeLongRow(const TableDef& table, const Column& column, RowPointer part, bool chained) {
        LongPages& pages = longValues_[column.number];
        if (pages.mapped && !pages.owned.contains(part.page))
            file_.throwDamaged("Seite nicht in der Liste der Spalte");
        if (!pages.used.insert(key(part)).second) file_.throwDamaged("Langer Wert zweimal benutzt");
        if (!pages.mapped && pages.owned.insert(part.page).second)
            own(part.page, table.name + "." + column.name);
        longPage_ = file_.page(part.page);
        const DataPage data(file_, *longPage_);
        const Bytes row = data.row(part.slot);
        if (!data.isDataOf(kLongValueOwner) || data.flags(part.slot) != 0) file_.throwDamaged("Langer Wert");
        if (chained && (part.slot != 0 || data.slotCount() != 1 || pages.withSpace.contains(part.page)))
            file_.throwDamaged("Seite einer Kette");
        return row;
    }

    void checkLongPages(const TableDef& table, const Column& column) {
        const std::string owner = table.name + "." + column.name;
        const LongPages& pages = longValues_[column.number];
        if (!std::includes(pages.owned.begin(), pages.owned.end(), pages.withSpace.begin(),
                           pages.withSpace.end()))
            report(owner + ": Seite mit Platz gehört nicht zur Spalte");
        for (const std::uint32_t number_ : pages.owned) {
            const PagePtr page = file_.page(number_);
            const DataPage data(file_, *page);
            if (!data.isDataOf(kLongValueOwner)) {
                report(owner + ": Seite " + number(number_) + " hat keine langen Werte");
                continue;
            }
            guarded(owner, [&] { checkSlots(number_, *page); });
            for (unsigned slot = 0; slot < data.slotCount(); ++slot) {
                if (data.flags(slot) == 0 &&
                    !pages.used.contains(key({number_, static_cast<std::uint8_t>(slot)})))
                    report(owner + ": verlorener langer Wert " + place(number_, slot));
            }
        }
    }

    // The pages below the root are those of the index's map.
    void checkTree(const TableDef& table, const Index& index) {
        const std::string owner = table.name + "." + index.name;
        const std::set<std::uint32_t> mapped = readMapPages(index.pages, owner);
        std::set<std::uint32_t> reached;
        std::vector<std::uint32_t> open = {index.root};
        while (!open.empty()) {
            const std::uint32_t page = open.back();
            open.pop_back();
            if (!reached.insert(page).second) file_.throwDamaged("Indexseite doppelt");
            own(page, owner);
            addChildren(*file_.page(page), open);
            if (!mapped.contains(page))
                report(owner + ": Indexseite " + number(page) + " fehlt in der Liste");
        }
        for (const std::uint32_t page : mapped) {
            if (!reached.contains(page))
                report(owner + ": Seite " + number(page) + " der Liste ist nicht im Baum");
        }
    }

    void addChildren(const Page& page, std::vector<std::uint32_t>& children) const {
        if (page[0] == static_cast<std::uint8_t>(PageType::kIndexLeaf)) return;
        if (page[0] != static_cast<std::uint8_t>(PageType::kIndexNode)) file_.throwDamaged("Indexseite");
        for (std::size_t end = kEntryChildSize; end < 8 * layout_.indexMaskSize; ++end) {
            if ((page[layout_.indexMask + end / 8] >> (end % 8) & 1) == 0) continue;
            const std::size_t at = layout_.indexEntries + end;
            if (at > page.size()) file_.throwDamaged("Indexeintrag");
            children.push_back(loadU32Big(&page[at - kEntryChildSize]));
        }
        const std::uint32_t tail = loadU32(&page[layout_.indexTail]);
        if (tail != 0) children.push_back(tail);
    }

    struct LongPages {
        bool mapped = false;
        std::set<std::uint32_t> owned, withSpace;
        std::set<std::uint64_t> used;
    };

    Database& database_;
    File& file_;
    const Layout& layout_;
    std::vector<std::string> owners_;
    std::vector<bool> free_;
    std::set<std::uint64_t> mapRows_;
    std::map<std::uint16_t, LongPages> longValues_;  // of the table at hand, by column number
    PagePtr longPage_;
    std::vector<std::string> findings_;
};

}  // namespace

std::vector<std::string> checkFile(Database& database) { return FileChecker(database).run(); }

}  // namespace wendel::jet
