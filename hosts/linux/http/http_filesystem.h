#pragma once
// The host's handler for http:// and https:// paths: `open` for reading performs a GET (on
// libcurl) and streams the answer's body. The request follows its host's policy: paced, and a
// busy answer asked again after a back-off, where the host asks for that.

#include <chrono>

#include <tunehall/stream.h>

#include "http_request_policy.h"
#include "request_failures.h"

// `deadline`: the longest one request may take (the user's --timeout). `failures`, when
// given, receives every failed request with its server and reason; it must outlive the handler.
service_ref<filesystem> make_http_filesystem(std::chrono::milliseconds deadline = http_request_policy{}.deadline,
                                             request_failures* failures = nullptr);
