#pragma once
// The statements that make the suite's tables and indexes in an empty database: names, types and sizes that
// the other programs of the suite expect.

#include <span>
#include <string_view>

namespace wendel::quillon {

std::span<const std::string_view> tabellenbefehle();

}  // namespace wendel::quillon
