// Makes a sample database with its photos: a complete file to try the program with, or a large one to
// measure it with. The program itself never creates its file.
#pragma once

#include "tools/sample_data.h"

namespace quorvane {

enum class DatabaseKind { Access, Sqlite };

// A new file with the five tables, all empty. Throws SampleError when it cannot be made, or exists already.
void WriteEmptyDatabase(const QString& file, DatabaseKind kind);

// Writes the data into a new database file, and the photos into the folder LuminairePhotoLib beside it;
// missing folders are made. The file appears under its name only when it is whole. Nothing is ever
// overwritten: throws SampleError when the file exists, when another photo stands where one belongs, or when
// something cannot be written, and then leaves no new file behind.
void WriteSampleDatabase(const SampleData& data, const QString& file,
                         DatabaseKind kind = DatabaseKind::Sqlite);

}  // namespace quorvane
