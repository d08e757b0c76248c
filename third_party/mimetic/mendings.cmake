# The five mendings of mimetic 0.9.8: which text of which file becomes which, and how often it
# stands there. mend.cmake applies them and stops when a text is not found exactly that often.
# Each fault has a test in tests/unit/mimetic/faults_test.cc.
#
#   mend(file count "fault" [[old text]] [[new text]])

mend(mimetic/codec/base64.h 2
  "the decoder looks up the byte one past its table ('|')"
  [[c > sDecTableSz ||]]
  [[c >= sDecTableSz ||]])

mend(mimetic/strutils.cxx 1
  "canonical() runs below index 0 on blanks, and what it cuts depends on evaluation order"
  [[
    while(input[idx] == ' ')
        idx--;
    input.erase(idx, input.length() - ++idx);]]
  [[
    while(idx >= 0 && input[idx] == ' ')
        idx--;
    input.erase(idx + 1);]])

mend(mimetic/rfc822/header.h 2
  "getField() leaves a field dangling when making its typed value throws"
  [[
            delete pFv;
            pFv = new T(val);]]
  [[
            FieldValue* made = new T(val);
            delete pFv;
            pFv = made;]])

mend(mimetic/rfc822/group.cxx 1
  "a group without members and without ';' makes a backward range"
  [[
    push_back(Mailbox(string(start, p-1)));]]
  [[
    if(start != p)
        push_back(Mailbox(string(start, p-1)));]])

mend(mimetic/parser/itparser.h 1
  "header text grows by a fixed step, so a long field costs quadratic time"
  [[
            int oldBufsz = bufsz;
            while(pos >= bufsz)
                bufsz = bufsz + alloc_block;]]
  [[
            size_t oldBufsz = bufsz;
            bufsz = bufsz ? bufsz * 2 : alloc_block;]])
