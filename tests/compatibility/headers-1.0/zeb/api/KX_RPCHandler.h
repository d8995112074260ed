// SPDX-License-Identifier: Apache-2.0
#ifndef ZEB_API_KX_RPCHANDLER_H
#define ZEB_API_KX_RPCHANDLER_H

#include <map>
#include <string>
#include <vector>

namespace zeb {
namespace api {

class CallbackMethod;

/// A plug-in's table of JSON-RPC methods. A plug-in exports one factory with C linkage,
/// `zeb::api::KX_RPCHandler* RPCHandler()`, that returns a new handler; the host deletes it.
///
/// The table is filled while the handler is constructed and only read afterwards, so any number of threads
/// may look methods up in a finished handler without a lock.
class KX_RPCHandler
{
public:
    KX_RPCHandler();
    /// Deletes the methods, last added first.
    virtual ~KX_RPCHandler();
    KX_RPCHandler(const KX_RPCHandler&) = delete;
    KX_RPCHandler& operator=(const KX_RPCHandler&) = delete;

    /// Whether the handler can be used. An unbound handler stays unbound: the host deletes it and asks the
    /// factory for another one. A plain handler is always bound.
    virtual bool isBound();

    /// Takes ownership of `method`, also when it throws. A method whose name is taken already is refused: the
    /// first stays, the second is deleted and one line on standard error says so. A null pointer, and a
    /// method that is in the table already, are ignored.
    void AddMethod(CallbackMethod* method);

    /// The method of that name, or null. It belongs to the handler.
    CallbackMethod* FindMethod(const std::string& name) const;

    /// All methods in the order in which they were added. They belong to the handler.
    const std::vector<CallbackMethod*>& GetMethods() const;

private:
    bool contains(const CallbackMethod* method) const;

    std::vector<CallbackMethod*> m_methods;
    std::map<std::string, CallbackMethod*> m_methodsByName;
};

} // namespace api
} // namespace zeb

#endif
