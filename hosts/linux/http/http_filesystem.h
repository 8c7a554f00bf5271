#pragma once
// The host's handler for http:// and https:// paths: `open` for reading performs a GET (on
// libcurl) and streams the answer's body.

#include <tunehall/stream.h>

service_ref<filesystem> make_http_filesystem();
