#ifndef KVL_SHELL_EXPORT_ASSETS_H
#define KVL_SHELL_EXPORT_ASSETS_H

/// The files of shell/export, which the build turns into texts.

extern const char KVLShellExportPageAsset[];  ///< with {{name}} where parts go
extern const char KVLShellExportStyleAsset[];
extern const char KVLShellExportScriptAsset[];

#endif
