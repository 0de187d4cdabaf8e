#include "jet/storage/TableBuilder.h"

#include <utility>

#include "jet/storage/IndexPage.h"
#include "jet/storage/UsageMap.h"

namespace wendel::jet {

TableBuilder::TableBuilder(File& file, PageAllocator& allocator, std::uint32_t page, bool system,
                           std::uint32_t mapPage)
    : file_(file),
      allocator_(allocator),
      pages_{page},
      parts_(newDefinition(file.layout(), system)),
      maps_(file, allocator, mapPage) {}

TableBuilder::TableBuilder(File& file, PageAllocator& allocator, const TableDef& table)
    : file_(file),
      allocator_(allocator),
      pages_(table.definitionPages),
      parts_(splitDefinition(file, loadDefinitionBytes(file, table.page))),
      maps_(file, allocator, table.ownedPages.page) {}

void TableBuilder::addColumns(std::vector<DefinitionParts::Named> columns) {
    jet::addColumns(file_, parts_, std::move(columns));
    const RowPointer owned = maps_.add();
    setTableMaps(file_.layout(), parts_, owned, maps_.add());
    for (const DefinitionParts::Named& column : parts_.columns) {
        if (!isLongColumn(column)) continue;
        const RowPointer pages = maps_.add();
        addLongValueMaps(parts_, columnNumber(file_.layout(), column), pages, maps_.add());
    }
}

std::uint32_t TableBuilder::addRealIndex(RealIndexPart index) {
    index.pages = maps_.add();
    index.root = allocator_.allocate();
    clearIndexPage(file_.layout(), *file_.replace(index.root), PageType::kIndexLeaf, pages_.front());
    addToUsageMap(file_, allocator_, index.pages, index.root);
    return jet::addRealIndex(file_.layout(), parts_, index);
}

void TableBuilder::store() { storeDefinition(file_, allocator_, pages_, parts_); }

}  // namespace wendel::jet
