#include "ui/win32/component_module.h"

#include <mutex>

#include "resources/resource.h"

namespace {
// Made once and kept for the module's life: released only by the process's end.
HANDLE g_context = INVALID_HANDLE_VALUE;
std::once_flag g_context_once;

HANDLE activation_context() {
    std::call_once(g_context_once, [] {
        ACTCTXW ctx{};
        ctx.cbSize = sizeof ctx;
        ctx.dwFlags = ACTCTX_FLAG_HMODULE_VALID | ACTCTX_FLAG_RESOURCE_NAME_VALID;
        ctx.hModule = component_module();
        ctx.lpResourceName = MAKEINTRESOURCEW(IDR_COMPONENT_MANIFEST);
        g_context = CreateActCtxW(&ctx);
    });
    return g_context;
}
} // namespace

HINSTANCE component_module() {
    HMODULE module = nullptr;
    GetModuleHandleExW(GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS | GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT,
                       reinterpret_cast<LPCWSTR>(&component_module), &module);
    return module;
}

component_activation::component_activation() {
    HANDLE context = activation_context();
    if (context != INVALID_HANDLE_VALUE) active_ = ActivateActCtx(context, &cookie_) != FALSE;
}

component_activation::~component_activation() {
    if (active_) DeactivateActCtx(0, cookie_);
}
