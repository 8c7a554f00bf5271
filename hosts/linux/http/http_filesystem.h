#pragma once
// The host's handler for http:// and https:// paths: `open` for reading performs a GET (on
// libcurl) and streams the answer's body. The request follows its host's policy: paced, and a
// busy answer asked again after a back-off, where the host asks for that.

#include <tunehall/stream.h>

service_ref<filesystem> make_http_filesystem();
