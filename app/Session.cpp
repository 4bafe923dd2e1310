#include "app/Session.h"

namespace vss {
namespace {

template <class I> void query(DriverObject& object, std::shared_ptr<I>& handle) {
    handle = QueryInterface<I>(object);
}

} // namespace

void acquireHandles(DriverObject& object, DriverHandles& h) {
    query(object, h.driver);
    query(object, h.piezo);
    query(object, h.stage);
    query(object, h.loadPosition);
    query(object, h.headLoader);
    query(object, h.spindle);
    query(object, h.clamp);
    query(object, h.headFace);
    query(object, h.index);
    query(object, h.interlock);
    query(object, h.service);
    query(object, h.diskSize);
}

void releaseHandles(DriverHandles& h) {
    h.driver.reset();
    h.piezo.reset();
    h.stage.reset();
    h.loadPosition.reset();
    h.headLoader.reset();
    h.spindle.reset();
    h.clamp.reset();
    h.headFace.reset();
    h.index.reset();
    h.interlock.reset();
    h.service.reset();
}

} // namespace vss
