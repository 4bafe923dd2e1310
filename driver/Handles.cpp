#include "driver/Handles.h"

namespace vss {
namespace {

// The eleven handles a session takes and gives back in one order; the disk-size handle follows them when taken
// and is not given back.
template <class F>
void forEachReleasedHandle(DriverHandles& h, F&& f) {
    f(h.driver);
    f(h.piezo);
    f(h.stage);
    f(h.loadPosition);
    f(h.headLoader);
    f(h.spindle);
    f(h.clamp);
    f(h.headFace);
    f(h.index);
    f(h.interlock);
    f(h.service);
}

template <class I>
void query(DriverObject& object, std::shared_ptr<I>& handle) {
    handle = QueryInterface<I>(object);
}

} // namespace

void acquireHandles(DriverObject& object, DriverHandles& h) {
    forEachReleasedHandle(h, [&object](auto& handle) { query(object, handle); });
    query(object, h.diskSize);
}

void releaseHandles(DriverHandles& h) {
    forEachReleasedHandle(h, [](auto& handle) { handle.reset(); });
}

} // namespace vss
