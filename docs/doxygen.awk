# Input filter of docs/Doxyfile, which wants a comment for each declaration. In the headers one comment speaks for all
# declarations up to the next blank line, and the text below the title of a section speaks for all functions in it.
NR == 1 { sub("^/// ", "/// @header ") }
/^\/\/ --- / { title = 1; section = "" }
title && !/^\/\// { title = 0 }
title && !/^\/\/ ---/ { section = section substr($0, 3) }
/^$/ { comment = "" }
/^\/\/\// {
  comment = own ? comment substr($0, 4) : substr($0, 4)
  own = 1
  print
  next
}
/^(KOVA_API|inline [^=]*\()/ {
  text = section == "" ? comment : section
  if (own)
    text = section == "" ? "" : " @note" section
  if (text != "")
    $0 = "/**" text " */ " $0
}
{
  own = 0
  print
}
