#pragma once
// The pages that were read last, up to a number of them; File asks it before it goes to the disk.

#include <cstddef>
#include <cstdint>
#include <list>
#include <memory>
#include <unordered_map>
#include <utility>
#include <vector>

namespace wendel::jet {

class PageCache {
  public:
    using Page = std::vector<std::uint8_t>;
    using PagePtr = std::shared_ptr<const Page>;

    void setSlots(std::size_t slots) { slots_ = slots; }

    // nullptr when it is not here.
    PagePtr find(std::uint32_t number) {
        const auto found = places_.find(number);
        if (found == places_.end()) return nullptr;
        slotList_.splice(slotList_.begin(), slotList_, found->second);
        return found->second->page;
    }

    void put(std::uint32_t number, PagePtr page) {
        erase(number);
        while (slotList_.size() >= slots_)
            dropOldest();
        slotList_.push_front({number, std::move(page)});
        places_[number] = slotList_.begin();
    }

    void erase(std::uint32_t number) {
        const auto found = places_.find(number);
        if (found == places_.end()) return;
        slotList_.erase(found->second);
        places_.erase(found);
    }

    void clear() {
        slotList_.clear();
        places_.clear();
    }

    // Room for a page that is going to be put: the memory of the one that was not used for longest, unless
    // somebody still holds it.
    std::shared_ptr<Page> buffer(std::size_t pageSize) {
        if (slotList_.size() >= slots_) {
            const PagePtr old = dropOldest();
            if (old.use_count() == 1 && old->size() == pageSize) return std::const_pointer_cast<Page>(old);
        }
        return std::make_shared<Page>(pageSize);
    }

  private:
    struct Slot {
        std::uint32_t number;
        PagePtr page;
    };

    PagePtr dropOldest() {
        PagePtr old = std::move(slotList_.back().page);
        places_.erase(slotList_.back().number);
        slotList_.pop_back();
        return old;
    }

    std::size_t slots_ = 0;
    // Most recently used first.
    std::list<Slot> slotList_;
    std::unordered_map<std::uint32_t, std::list<Slot>::iterator> places_;
};

}  // namespace wendel::jet
