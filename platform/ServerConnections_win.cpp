#include "platform/ServerConnections.h"

namespace vardel {

ServerConnections& SystemServerConnections() {
    static WmiServerConnections connections(SystemWmi());
    return connections;
}

}  // namespace vardel
