#include "kit/WaitCursor.h"

#include <QApplication>
#include <algorithm>

namespace vss {
namespace {

// Every wait cursor that exists, and whether it is on the application's cursor stack now (a lifted one is
// not). All of them are the same shape, so the stack holds as many as are shown, in any order.
struct Entry {
    std::uint64_t id;
    bool shown;
};

std::vector<Entry>& entries() {
    static std::vector<Entry> all;
    return all;
}

Entry* find(std::uint64_t id) {
    std::vector<Entry>& all = entries();
    const auto it = std::find_if(all.begin(), all.end(), [id](const Entry& e) { return e.id == id; });
    return it == all.end() ? nullptr : &*it;
}

void show(Entry& entry) {
    QApplication::setOverrideCursor(Qt::WaitCursor);
    entry.shown = true;
}

void hide(Entry& entry) {
    QApplication::restoreOverrideCursor();
    entry.shown = false;
}

std::uint64_t lastId = 0;

} // namespace

WaitCursor::WaitCursor() : id_(++lastId) {
    entries().push_back({id_, false});
    show(entries().back());
}

WaitCursor::~WaitCursor() {
    Entry* entry = find(id_);
    if (entry->shown)
        hide(*entry);
    entries().erase(entries().begin() + (entry - entries().data()));
}

WaitCursorLift::WaitCursorLift() {
    for (Entry& entry : entries()) {
        if (entry.shown) {
            hide(entry);
            lifted_.push_back(entry.id);
        }
    }
}

WaitCursorLift::~WaitCursorLift() {
    for (const std::uint64_t id : lifted_) {
        if (Entry* entry = find(id); entry && !entry->shown)
            show(*entry);
    }
}

} // namespace vss
