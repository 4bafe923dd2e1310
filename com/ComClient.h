#pragma once

// The registered driver through COM: a DriverObject whose twelve interfaces call the driver early-bound, through
// each raw interface's function table. The calling thread is made a single-threaded apartment (the driver's
// interfaces have no proxies for a multithreaded one) and must be the one thread that uses the object.

#include "driver/Interfaces.h"

#include <memory>
#include <string>
#include <string_view>

struct IUnknown;

namespace vss::com {

class ComDriverObject : public DriverObject {
public:
    // Creates the registered class in-process, or, when that fails, as a local server (a 32-bit driver registered
    // for surrogate activation serves a 64-bit tool that way). Throws DriverError with the system's description,
    // also when nothing is registered under progId.
    static std::shared_ptr<ComDriverObject> create(std::string_view progId);

    // Takes over one reference to an existing object; `name` stands for it in messages.
    static std::shared_ptr<ComDriverObject> attach(IUnknown* object, std::string_view name);

    // Throws DriverError for an identifier that is not one of the twelve or that the object does not implement.
    std::shared_ptr<Interface> QueryInterface(const Guid& iid) override;

    struct Session;

private:
    explicit ComDriverObject(std::shared_ptr<Session> session) : session_(std::move(session)) {}
    std::shared_ptr<Session> session_;
};

} // namespace vss::com
