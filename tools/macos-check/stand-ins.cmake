# Read after project(): what Debian's packages need to be looked at from a Mac.

# Qt's asks for it on a Mac, and nothing uses it.
add_library(WrapOpenGL::WrapOpenGL INTERFACE IMPORTED GLOBAL)

# The headers of this machine's own C library stand among those of the libraries that we use: the folder is left out,
# and sources.sh makes one with nothing but the libraries'.
foreach(language C CXX OBJCXX)
    list(APPEND CMAKE_${language}_IMPLICIT_INCLUDE_DIRECTORIES /usr/include)
endforeach()

# What is to be linked is only noted: the libraries on this machine are Linux's. The one program that the
# build calls, which makes one file from another, is played by cp.
foreach(language CXX OBJCXX)
    set(CMAKE_${language}_CREATE_SHARED_LIBRARY "<CMAKE_COMMAND> -E touch <TARGET>")
    set(CMAKE_${language}_LINK_EXECUTABLE "<CMAKE_COMMAND> -E copy /bin/cp <TARGET>")
endforeach()
