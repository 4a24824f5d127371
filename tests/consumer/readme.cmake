# The first program in the README is the one that is built and run here, to the letter.
file(READ ${README} readme)
file(READ ${PROGRAM} program)
string(FIND "${readme}" "```cpp\n${program}```" position)
if(position EQUAL -1)
  message(FATAL_ERROR "The first program in ${README} is not ${PROGRAM}: copy the file into the README's block")
endif()
