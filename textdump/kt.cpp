#include "kova/kt.h"

#include "textdump/behavior.h"
#include "textdump/extension.h"
#include "textdump/geometry.h"
#include "textdump/lines.h"
#include "textdump/material.h"
#include "textdump/scene.h"

namespace kova {

namespace {

void writeVersion1(Text &text, const Kis &kis) {
  kvWriteKtFileHeader1(text, kis.file_header);
  kvWriteKtSceneList1(text, kis.scene);
  kvWriteKtEnvList1(text, kis.env);
  kvWriteKtCamList1(text, kis.cam);
  kvWriteKtLightList1(text, kis.light);
  kvWriteKtObjList1(text, kis.obj);
  kvWriteKtShapeList1(text, kis.shape);
  kvWriteKtVtxList1(text, kis.vtx);
  kvWriteKtTriList1(text, kis.tri);
  kvWriteKtColorList1(text, kis.color);
  kvWriteKtVectorList1(text, kis.vector);
  kvWriteKtStList1(text, kis.st);
  kvWriteKtPartList1(text, kis.part);
  kvWriteKtMatList1(text, kis.mat);
  kvWriteKtTexList1(text, kis.tex);
  kvWriteKtTeximgList1(text, kis.teximg);
  kvWriteKtAnimList1(text, kis.anim);
  kvWriteKtCollList1(text, kis.coll);
  kvWriteKtSwitchList1(text, kis.switch_);
  kvWriteKtNameList1(text, kis.name);
}

void writeVersion2(Text &text, const Kis &kis) {
  kvWriteKtFileHeader(text, kis.file_header);
  kvWriteKtSceneList(text, kis.scene);
  kvWriteKtEnvList(text, kis.env);
  kvWriteKtCamList(text, kis.cam);
  kvWriteKtLightList(text, kis.light);
  kvWriteKtObjList(text, kis.obj);
  kvWriteKtShapeList(text, kis.shape);
  kvWriteKtVtxList(text, kis.vtx);
  kvWriteKtTriList(text, kis.tri);
  kvWriteKtColorList(text, kis.color);
  kvWriteKtVectorList(text, kis.vector);
  kvWriteKtStList(text, kis.st);
  kvWriteKtPartList(text, kis.part);
  kvWriteKtMatList(text, kis.mat);
  kvWriteKtTexList(text, kis.tex);
  kvWriteKtTeximgList(text, kis.teximg);
  kvWriteKtAnimList(text, kis.anim);
  kvWriteKtCollList(text, kis.coll);
  kvWriteKtSwitchList(text, kis.switch_);
  kvWriteKtNameList(text, kis.name);
  kvWriteKt2Ext(text, kis);
}

} // namespace

int kvPrintKt(std::FILE *stream, const Kis &kis) {
  Text text(stream);
  if (kvKOVAver(kis.file_header) == VERSION_1)
    writeVersion1(text, kis);
  else
    writeVersion2(text, kis);
  flush(text);
  return std::fflush(stream) == 0 && std::ferror(stream) == 0;
}
int kvWriteKt(std::FILE *stream, const Kis &kis) {
  if (kvKOVAver(kis.file_header) == VERSION_1)
    return kvWriteKt1(stream, kis);
  Text text(stream);
  writeVersion2(text, kis);
  flush(text);
  return 1;
}

int kvWriteKt1(std::FILE *stream, const Kis &kis) {
  Text text(stream);
  writeVersion1(text, kis);
  flush(text);
  std::fclose(stream);
  return 1;
}

int kvOutputKt(const Kis &kis) { return kvWriteKt(stdout, kis); }

int kvOutputKt1(const Kis &kis) { return kvWriteKt1(stdout, kis); }

int kvSaveAsKt(const Kis &kis, const char *path) {
  if (kvKOVAver(kis.file_header) == VERSION_1)
    return kvSaveAsKt1(kis, path);
  const Stream stream = kvKtWriteOpen(path);
  return stream ? kvWriteKt(stream.get(), kis) : 0;
}

int kvSaveAsKt1(const Kis &kis, const char *path) {
  Stream stream = kvKtWriteOpen(path);
  return stream ? kvWriteKt1(stream.release(), kis) : 0; // the dump closes what it is given
}

} // namespace kova
