#pragma once

// Whether the tests run under the address sanitizer, which takes terabytes of addresses and needs
// files of its own: limits on memory or on open files do not go with it.
#if defined(__SANITIZE_ADDRESS__)
inline constexpr bool underAddressSanitizer = true;
#elif defined(__has_feature)
#if __has_feature(address_sanitizer)
inline constexpr bool underAddressSanitizer = true;
#else
inline constexpr bool underAddressSanitizer = false;
#endif
#else
inline constexpr bool underAddressSanitizer = false;
#endif
