// The ports of this process by name. Any thread.
#pragma once

#include <map>
#include <mutex>
#include <string>

#include "platform/CoreFoundation/Runtime/CFObject.h"

namespace message_port {

// Does not keep its ports alive: a port removes itself when it ends.
template <typename PortType>
class PortTable {
  public:
    // The only table. Never destroyed: ports may otherwise outlive it while the process ends.
    static PortTable& Instance() {
        static PortTable& table = *new PortTable;
        return table;
    }

    core_foundation::Retained<PortType> Find(const std::string& name) {
        const std::lock_guard lock(mutex_);
        const auto found = ports_.find(name);
        if (found == ports_.end() || !found->second->TryRetain()) {
            return {};
        }
        return core_foundation::Retained<PortType>::Adopt(found->second);
    }

    void Enter(const std::string& name, PortType* port) {
        const std::lock_guard lock(mutex_);
        ports_[name] = port;
    }

    void Remove(const std::string& name, const PortType* port) {
        const std::lock_guard lock(mutex_);
        const auto found = ports_.find(name);
        if (found != ports_.end() && found->second == port) {
            ports_.erase(found);
        }
    }

  private:
    std::mutex mutex_;
    std::map<std::string, PortType*> ports_;
};

}  // namespace message_port
