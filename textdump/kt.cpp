#include "kova/kt.h"

#include "format/all.h"
#include "reader/findings.h"
#include "textdump/content.h"
#include "textdump/sections.h"

#include <cstring>

namespace kova {

namespace {

/// How the section of a list is written.
struct SectionRow {
  const char *list;
  void (*version1)(Text &, const Kis &); ///< in a 1.0 dump
  void (*version2)(Text &, const Kis &); ///< in a 2.0 dump
};

template <auto RECORD, auto VERSION1, auto VERSION2> constexpr SectionRow section(const char *list) {
  return {list, [](Text &text, const Kis &kis) { VERSION1(text, kis.*RECORD); },
          [](Text &text, const Kis &kis) { VERSION2(text, kis.*RECORD); }};
}

/// Those of version 1.0.
constexpr auto SECTIONS = inListOrder({
    section<&Kis::scene, kvWriteKtSceneList1, kvWriteKtSceneList>("SceneList"),
    section<&Kis::env, kvWriteKtEnvList1, kvWriteKtEnvList>("EnvList"),
    section<&Kis::cam, kvWriteKtCamList1, kvWriteKtCamList>("CamList"),
    section<&Kis::light, kvWriteKtLightList1, kvWriteKtLightList>("LightList"),
    section<&Kis::obj, kvWriteKtObjList1, kvWriteKtObjList>("ObjList"),
    section<&Kis::shape, kvWriteKtShapeList1, kvWriteKtShapeList>("ShapeList"),
    section<&Kis::vtx, kvWriteKtVtxList1, kvWriteKtVtxList>("VtxList"),
    section<&Kis::tri, kvWriteKtTriList1, kvWriteKtTriList>("TriList"),
    section<&Kis::color, kvWriteKtColorList1, kvWriteKtColorList>("ColorList"),
    section<&Kis::vector, kvWriteKtVectorList1, kvWriteKtVectorList>("VectorList"),
    section<&Kis::st, kvWriteKtStList1, kvWriteKtStList>("StList"),
    section<&Kis::part, kvWriteKtPartList1, kvWriteKtPartList>("PartList"),
    section<&Kis::mat, kvWriteKtMatList1, kvWriteKtMatList>("MatList"),
    section<&Kis::tex, kvWriteKtTexList1, kvWriteKtTexList>("TexList"),
    section<&Kis::teximg, kvWriteKtTeximgList1, kvWriteKtTeximgList>("TeximgList"),
    section<&Kis::anim, kvWriteKtAnimList1, kvWriteKtAnimList>("AnimList"),
    section<&Kis::coll, kvWriteKtCollList1, kvWriteKtCollList>("CollList"),
    section<&Kis::switch_, kvWriteKtSwitchList1, kvWriteKtSwitchList>("SwitchList"),
    section<&Kis::name, kvWriteKtNameList1, kvWriteKtNameList>("NameList"),
});

/// Whether the elements of a list have the words of version 2, and so one section for all such lists.
template <class List>
concept Version2List = requires(const List &list) {
  list.element[0].this_index;
};

/// The external names print as the names, under their own opener and closer.
void writeSection2(Text &text, const Kis &kis, std::size_t at) {
  std::size_t list = 0;
  eachList([&](const auto &row) {
    if (list++ != at)
      return;
    const auto &records = kis.*row.list;
    if constexpr (std::is_same_v<decltype(records), const NameList &>)
      kvWriteKtExternalNameList(text, records);
    else if constexpr (Version2List<std::remove_cvref_t<decltype(records)>>)
      writeVersion2Section(text, records, row.name);
  });
}

/// Writes the section of a list. The lists of version 1.0 always print, the others only in a 2.0 dump of a file that
/// has them.
void writeList(Text &text, const Kis &kis, Word version, std::size_t list) {
  if (list < VERSION_1_LIST_NUM)
    (version == VERSION_1 ? SECTIONS[list].version1 : SECTIONS[list].version2)(text, kis);
  else if (version != VERSION_1 && kis.file_header.*LISTS[list].size != 0)
    writeSection2(text, kis, list);
}

/// @return the version of the dump of a file.
Word dumpVersion(const Kis &kis) { return kvKOVAver(kis.file_header) == VERSION_1 ? VERSION_1 : VERSION_2; }

/// Hands the rest of a text to its stream. @return 0 where the stream has not taken all of it.
int finish(Text &text) {
  flush(text);
  return std::fflush(text.stream) == 0 && std::ferror(text.stream) == 0;
}

/// Writes the dump of this version and leaves the stream open.
int writeDump(std::FILE *stream, const Kis &kis, Word version) {
  Text text(stream);
  if (version == VERSION_1)
    kvWriteKtFileHeader1(text, kis.file_header);
  else
    kvWriteKtFileHeader(text, kis.file_header);
  for (std::size_t list = 0; list < LIST_NUM; ++list)
    writeList(text, kis, version, list);
  return finish(text);
}

/// As `writeDump`, but closes the stream, which may fail, too.
int writeAndClose(std::FILE *stream, const Kis &kis, Word version) {
  const int ok = writeDump(stream, kis, version);
  return std::fclose(stream) == 0 && ok;
}

int saveDump(const Kis &kis, const char *path, Word version) {
  Stream stream = kvKtWriteOpen(path);
  if (!stream)
    return 0;
  const int ok = writeAndClose(stream.release(), kis, version);
  if (!ok)
    report<"output-write">({}, {});
  return ok;
}

} // namespace

int kvPrintKt(std::FILE *stream, const Kis &kis) { return writeDump(stream, kis, dumpVersion(kis)); }

int kvPrintKtList(std::FILE *stream, const Kis &kis, const char *name) {
  for (std::size_t list = 0; list < LIST_NUM; ++list)
    if (std::strcmp(LISTS[list].name, name) == 0) {
      Text text(stream);
      writeList(text, kis, dumpVersion(kis), list);
      return finish(text);
    }
  return 0;
}

int kvWriteKt(std::FILE *stream, const Kis &kis) {
  return dumpVersion(kis) == VERSION_1 ? kvWriteKt1(stream, kis) : writeDump(stream, kis, VERSION_2);
}

int kvWriteKt1(std::FILE *stream, const Kis &kis) { return writeAndClose(stream, kis, VERSION_1); }

int kvOutputKt(const Kis &kis) { return kvWriteKt(stdout, kis); }

int kvOutputKt1(const Kis &kis) { return kvWriteKt1(stdout, kis); }

int kvSaveAsKt(const Kis &kis, const char *path) { return saveDump(kis, path, dumpVersion(kis)); }

int kvSaveAsKt1(const Kis &kis, const char *path) { return saveDump(kis, path, VERSION_1); }

} // namespace kova
