#include "platform/ServerConnections.h"

namespace vardel {

namespace {

constexpr char kQuery[] = "SELECT * FROM Win32_ServerConnection";

std::string TextOf(WmiObject& object, const char* property) {
    std::optional<std::string> text;
    object.GetText(property, text);
    return text ? *text : std::string();
}

ServerConnection RowOf(WmiObject& object) {
    ServerConnection row{.computer = TextOf(object, "ComputerName"),
                         .share = TextOf(object, "ShareName"),
                         .user = TextOf(object, "UserName")};
    std::optional<i32> seconds;
    object.GetNumber("ActiveTime", seconds);
    if (seconds) row.activeTime = *seconds;
    return row;
}

}  // namespace

bool WmiServerConnections::EnterThread() {
    if (WmiFailed(wmi_.EnterThread())) return false;
    if (WmiSecurityStands(wmi_.InitializeSecurity())) return true;
    wmi_.LeaveThread();
    return false;
}

std::vector<ServerConnection> WmiServerConnections::List() {
    std::vector<ServerConnection> rows;
    std::unique_ptr<WmiLocator> locator;
    if (WmiFailed(wmi_.CreateLocator(locator)) || !locator) return rows;
    std::unique_ptr<WmiNamespace> connection;
    if (WmiFailed(locator->Connect(kWmiLocalResource, nullptr, connection)) || !connection) return rows;
    if (WmiFailed(connection->SetBlanket(WmiAuthentication::Call, nullptr))) return rows;
    std::unique_ptr<WmiObjects> objects;
    if (WmiFailed(connection->Query(kQuery, objects)) || !objects) return rows;
    std::unique_ptr<WmiObject> object;
    for (objects->Next(object); object; objects->Next(object)) rows.push_back(RowOf(*object));
    return rows;
}

}  // namespace vardel
