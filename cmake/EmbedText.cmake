# Turns a text file into a C++ string literal. Call: cmake -DINPUT=... -DOUTPUT=... -P EmbedText.cmake
file(READ "${INPUT}" text)
file(WRITE "${OUTPUT}" "R\"sql(${text})sql\"\n")
