# Which outside library serves which floor. Only the floor itself sees its headers.
vesk_uses(platform SDL2::SDL2 Threads::Threads ${CMAKE_DL_LIBS})
vesk_uses(runner PkgConfig::EPOXY PkgConfig::VORBISFILE PNG::PNG ZLIB::ZLIB json-c::json-c)
vesk_uses(sim PNG::PNG)
vesk_uses(pack PkgConfig::VORBISENC PNG::PNG ZLIB::ZLIB)
