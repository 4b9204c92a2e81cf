#include "checker/steps.h"

namespace kova {

Label elementLabel(const char *name, Word number, const char *what) {
  Label label;
  std::snprintf(label.text, sizeof label.text, "%s[%d]%s", name, asSigned(number), what);
  return label;
}

void checkHeading(const char *name) { std::printf("---- checking %s ----\n", name); }

int checkIndexSize(const char *name, Word number, Word table_size, const ElementHead &element) {
  return check_index_size(name, number, element.this_index, table_size, element.size);
}

int checkListSize(const Kis &kis, const ListRow &row, Word list_size) {
  return checksame("list size", kis.file_header.*row.size, list_size);
}

int checkListSizes(const Kis &kis, const ListRow &row, const ListHead &list, std::span<const Word> num_byte) {
  int ok = checkListSize(kis, row, list.list_size);
  ok *= check_whole_structured_size("", list.list_size, fixedBytes<ListHead>, num_byte, list.num, list.van_ext_blk_size,
                                    list.usr_ext_blk_size);
  return ok;
}

} // namespace kova
