#pragma once
// The kernel's own view of the machine's connection, for machines without a network manager.

#include <string>

namespace wendel {

// The first point-to-point interface that is up; on a machine that has none, up or down, the interface of the
// default route. "" when there is no connection.
std::string aktiveNetzschnittstelle();

// The interface of the first default route that is up, from the text of /proc/net/route or
// /proc/net/ipv6_route; "" without one.
std::string schnittstelleDerVorgabe(const std::string& route, const std::string& ipv6Route);

}  // namespace wendel
