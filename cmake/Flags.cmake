# The warnings and Qt switches that every target of the project compiles with.
add_library(qs_flags INTERFACE)
target_compile_options(qs_flags INTERFACE
  -Wall -Wextra -Wpedantic -Wshadow -Wconversion -Wold-style-cast -Wnon-virtual-dtor
  -Woverloaded-virtual -Werror)
target_compile_definitions(qs_flags INTERFACE
  QT_NO_CAST_FROM_ASCII QT_NO_CAST_TO_ASCII QT_NO_CAST_FROM_BYTEARRAY QT_NO_URL_CAST_FROM_STRING
  QT_NO_KEYWORDS QT_NO_FOREACH QT_STRICT_ITERATORS QT_NO_NARROWING_CONVERSIONS_IN_CONNECT
  QS_VERSION="${PROJECT_VERSION}")

if(QS_SANITIZE)
  target_compile_options(qs_flags INTERFACE
    -fsanitize=${QS_SANITIZE} -fno-sanitize-recover=all -fno-omit-frame-pointer)
  target_link_options(qs_flags INTERFACE -fsanitize=${QS_SANITIZE})
else()
  # The program that users run stops where a buffer is overrun, and the tables through which it
  # calls its libraries are read-only once it is loaded. (The checks of the C library need
  # optimisation.)
  set(release $<CONFIG:Release>)
  target_compile_options(qs_flags INTERFACE
    $<${release}:-U_FORTIFY_SOURCE> $<${release}:-D_FORTIFY_SOURCE=2>
    $<${release}:-fstack-protector-strong>)
  target_link_options(qs_flags INTERFACE $<${release}:LINKER:-z,relro,-z,now>)
endif()
