#pragma once
// The one place where paths of the logic ("\" between folders) and native paths meet. Adapters convert at the
// moment they touch the system; the logic itself never does.

#include <string>
#include <string_view>

namespace wendel {

// Every "\" becomes "/", runs of "/" become one: "C:\TV\\tvdaten.mdb" is the relative "C:/TV/tvdaten.mdb".
std::string nativerPfad(std::string_view pfad);

// Every "/" becomes "\". A native name that holds a "\" itself can't be told apart afterwards; no program of
// the suite makes such names.
std::string logischerPfad(std::string_view nativ);

// What a text shows to the user: "\" shown as "/", everything else as written.
std::string pfadAnzeige(std::string_view pfad);

// The part after the last "/" of a native path, and what stands before it ("." where there is none, "/" for
// the root).
std::string_view letzterTeil(std::string_view nativ);
std::string elternordner(std::string_view nativ);

}  // namespace wendel
