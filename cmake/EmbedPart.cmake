# Turns a style sheet or a script of a page into a C++ aggregate: its text, and the hash by which the page's policy knows
# it. Call: cmake -DINPUT=... -DOUTPUT=... -P EmbedPart.cmake
file(READ "${INPUT}" text)
file(SHA256 "${INPUT}" digits)
# Three bytes are four characters; two are left at the end.
string(APPEND digits "00")
set(alphabet "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/")
set(hash "")
foreach(at RANGE 0 60 6)
  string(SUBSTRING "${digits}" ${at} 6 bytes)
  foreach(shift 18 12 6 0)
    math(EXPR place "(0x${bytes} >> ${shift}) & 63")
    string(SUBSTRING "${alphabet}" ${place} 1 character)
    string(APPEND hash "${character}")
  endforeach()
endforeach()
string(REGEX REPLACE "A$" "=" hash "${hash}")
file(WRITE "${OUTPUT}" "{R\"part(${text})part\", \"sha256-${hash}\"}\n")
