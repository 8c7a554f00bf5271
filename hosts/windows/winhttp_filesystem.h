#pragma once
// The Windows host's handler for http:// and https:// paths: `open` for reading performs a GET
// with WinHTTP and streams the answer's body.

#include <tunehall/stream.h>

service_ref<filesystem> make_winhttp_filesystem();
