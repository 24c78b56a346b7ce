#include "app/output_file.h"

#include "terminal/input_error.h"

namespace iorder {

COutputFile::COutputFile(const std::filesystem::path& path)
    : m_place(path), m_file(CreateOutputFile(m_place.Path())) {}

void COutputFile::Write(std::string_view text) try { m_file->Write(text); } catch (const InputError& error) {
  throw InputError(m_place.Named(error.what()));
}

void COutputFile::Commit() try {
  m_file->Close();
  m_place.Commit();
} catch (const InputError& error) {
  throw InputError(m_place.Named(error.what()));
}

}  // namespace iorder
