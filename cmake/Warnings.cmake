# One library for what every target is compiled with; nothing here reaches users of a library by accident.
add_library(zavelik_options INTERFACE)
target_compile_options(zavelik_options INTERFACE
  $<$<CXX_COMPILER_ID:GNU,Clang,AppleClang>:-Wall -Wextra -Wformat=2 -Wnon-virtual-dtor -Woverloaded-virtual>
  $<$<CXX_COMPILER_ID:GNU>:-Wshadow=local>
  $<$<CXX_COMPILER_ID:MSVC>:/W4 /utf-8>)
if(ZAVELIK_WERROR)
  target_compile_options(zavelik_options INTERFACE
    $<$<CXX_COMPILER_ID:GNU,Clang,AppleClang>:-Werror> $<$<CXX_COMPILER_ID:MSVC>:/WX>)
endif()
target_compile_definitions(zavelik_options INTERFACE QT_NO_CAST_FROM_BYTEARRAY QT_NO_KEYWORDS
  QT_DISABLE_DEPRECATED_BEFORE=0x060400)
target_include_directories(zavelik_options INTERFACE ${PROJECT_SOURCE_DIR})
if(ZAVELIK_SANITIZE)
  target_compile_options(zavelik_options INTERFACE -fsanitize=address,undefined -fno-sanitize-recover=undefined -fno-omit-frame-pointer)
  target_link_options(zavelik_options INTERFACE -fsanitize=address,undefined)
endif()
if(ZAVELIK_BUILD_FUZZ)
  target_compile_options(zavelik_options INTERFACE -fsanitize=fuzzer-no-link,address,undefined -fno-sanitize-recover=undefined -fno-omit-frame-pointer)
  target_link_options(zavelik_options INTERFACE -fsanitize=address,undefined)
endif()
