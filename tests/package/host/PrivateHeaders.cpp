#if !__has_include(<Foundation/NSString.h>)
#error "a host finds public headers"
#elif __has_include(<Foundation/Internal/NSKeyedHash.h>) || __has_include(<VXFoundation/kernels/Radix.h>)
#error "a host finds private headers"
#endif
