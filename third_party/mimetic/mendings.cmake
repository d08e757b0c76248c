# The mendings of mimetic 0.9.8: which text of which file becomes which, and how often it
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

# Two that depend on the process's locale: in a Turkish one "MIME" and "mime" would differ, and a C++
# locale may group the digits of a number.

mend(mimetic/strutils.h 1
  "texts are compared with the locale's own case"
  [[
        for(size_t i=0; i < n; ++i)
            if(toupper(s1[i]) != toupper(s2[i]))
                return (toupper(s1[i]) < toupper(s2[i])) ?-1: 1;
        return 0;
    }]]
  [[
        for(size_t i=0; i < n; ++i)
            if(upper(s1[i]) != upper(s2[i]))
                return (upper(s1[i]) < upper(s2[i])) ?-1: 1;
        return 0;
    }
    static int upper(char c)
    {    return (c >= 'a' && c <= 'z' ? c - 'a' + 'A' : c);    }]])
mend(mimetic/strutils.h 1
  "texts of unlike lengths are compared, and may be read past their ends"
  [[
inline bool operator==(const istring& is, const std::string& s)
{
    return (0 ==]]
  [[
inline bool operator==(const istring& is, const std::string& s)
{
    return is.length() == s.length() && (0 ==]])
mend(mimetic/strutils.h 1
  "names and words of unlike lengths are compared, and may be read past their ends"
  [[
inline bool operator==(const istring& is, const char* str)
{
    return (0 ==]]
  [[
inline bool operator==(const istring& is, const char* str)
{
    return is.length() == ::strlen(str) && (0 ==]])
mend(mimetic/utils.cxx 1
  "numbers are written with the locale's digit groups"
  [[
    Int i(n);
    return i;]]
  [[
    return std::to_string(n);]])

# Two that cost time growing with the square of a hostile text. The results are the same.

mend(mimetic/strutils.cxx 1
  "canonical() moves the rest of the text for each blank and comment it drops"
  [[
    int in_par = 0, in_brack = 0, par_last;
    for(int t =input.length() - 1; t >= 0; --t)
    {
        if(input[t] == '"') {]]
  [[
    int in_par = 0, in_brack = 0;
    string kept; // from the last character to the first
    size_t par_last = 0;
    for(int t =input.length() - 1; t >= 0; --t)
    {
        const size_t before = kept.length();
        kept += input[t];
        if(input[t] == '"') {]])
mend(mimetic/strutils.cxx 1
  "canonical(), the place of a comment"
  [[
                par_last = t;]]
  [[
                par_last = before;]])
mend(mimetic/strutils.cxx 1
  "canonical(), a comment"
  [[
                input.erase(t, 1 + par_last - t);]]
  [[
                kept.resize(par_last);]])
mend(mimetic/strutils.cxx 1
  "canonical(), the space instead of a comment"
  [[
                    input.insert(t, " ");]]
  [[
                    kept += ' ';]])
mend(mimetic/strutils.cxx 1
  "canonical(), a blank"
  [[
            input.erase(t, 1);
        }
    }
    return input;]]
  [[
            kept.resize(before);
        }
    }
    return string(kept.rbegin(), kept.rend());]])

mend(mimetic/rfc822/field.cxx 1
  "Field::write() moves the rest of the field for each line it folds, and scans it for blanks"
  [[
        skip = name().length() + 2; 

        while(ostr.length() > fold)]]
  [[
        skip = name().length() + 2; 
        const size_t end = ostr.find_last_not_of(" \t") + 1; // only blanks follow
        size_t start = 0; // of what is not written yet

        while(ostr.length() - start > fold)]])
mend(mimetic/rfc822/field.cxx 1
  "Field::write(), one line"
  [[
            for(i = skip; i < ostr.length(); ++i)
            {
                if(ostr[i] == '"' && prev != '\\')
                    in_quote = !in_quote;

                if(!in_quote && isblank(ostr[i]))]]
  [[
            for(i = skip; i < ostr.length() - start; ++i)
            {
                const char c = ostr[start + i];
                if(c == '"' && prev != '\\')
                    in_quote = !in_quote;

                if(!in_quote && isblank(c))]])
mend(mimetic/rfc822/field.cxx 1
  "Field::write(), the end of a line"
  [[
                    os.write(ostr.c_str(), sp);
                    ostr.erase(0, 1+sp);
                    if(ostr.length() && !utils::string_is_blank(ostr))]]
  [[
                    os.write(ostr.c_str() + start, sp);
                    start += 1+sp;
                    if(start < end)]])
mend(mimetic/rfc822/field.cxx 1
  "Field::write(), the character before"
  [[
                prev = ostr[i];]]
  [[
                prev = c;]])
mend(mimetic/rfc822/field.cxx 1
  "Field::write(), the last line"
  [[
        os << ostr;
        return os;]]
  [[
        return os.write(ostr.c_str() + start, ostr.length() - start);]])

# What is asked of every header, and copied texts several times each time. The results are the same.

mend(mimetic/rfc822/header.h 1
  "find_by_name holds a copy of the name, and is copied with it"
  [[
        const istring m_name;]]
  [[
        const std::string& m_name; // outlives the search]])
mend(mimetic/rfc822/header.cxx 1
  "find_by_name, compared ignoring case: the istring stands on the left"
  [[
    return m_name == f.name();]]
  [[
    return f.name() == m_name;]])
mend(mimetic/rfc822/field.cxx 1
  "Field::name() makes the name twice"
  [[
    m_name = name;
    if(m_pValue != 0)]]
  [[
    m_name.assign(name);
    if(m_pValue != 0)]])
mend(mimetic/strutils.cxx 1
  "canonical() takes apart what holds nothing to take out"
  [[
    if(s.empty())
        return s;]]
  [[
    if(s.length() == strcspn(s.c_str(), " \"()<>"))
        return s;]])
mend(mimetic/rfc822/mailbox.cxx 1
  "Mailbox::str() grows its string again and again"
  [[
    string rs;
    bool hasLabel]]
  [[
    string rs;
    rs.reserve(m_label.length() + m_mailbox.length() + m_domain.length() + 4);
    bool hasLabel]])
mend(mimetic/rfc822/mailbox.cxx 1
  "Mailbox::str() copies the label twice"
  [[
        rs = m_label + " <";]]
  [[
        rs.append(m_label).append(" <");]])
mend(mimetic/rfc822/mailbox.cxx 1
  "Mailbox::str() makes three strings of each"
  [[
    rs += m_mailbox + "@" + m_domain;]]
  [[
    rs += m_mailbox;
    rs += '@';
    rs += m_domain;]])
mend(mimetic/contenttype.cxx 1
  "ContentType::str() makes five strings of each parameter"
  [[
        ostr += "; " + bit->name() + "=\"" + bit->value() + "\"";]]
  [[
        ostr.append("; ").append(bit->name()).append("=\"").append(bit->value()) += '"';]])
mend(mimetic/contentdisposition.cxx 1
  "ContentDisposition::str() makes five strings of each parameter"
  [[
        ostr += "; " + bit->name() +  "=\"" 
               + bit->value() + "\"";]]
  [[
        ostr.append("; ").append(bit->name()).append("=\"").append(bit->value()) += '"';]])
mend(mimetic/rfc822/header.h 1
  "a header without fields has room for a dozen"
  [[
class Rfc822Header: public std::deque<Field>]]
  [[
class Rfc822Header: public std::list<Field>]])
mend(mimetic/rfc822/header.h 1
  "the same, where it comes from"
  [[
#include <deque>]]
  [[
#include <list>]])
