# The screens: their QML files, the classes that they are made with, and the symbols that they show.
set(QUORVIX_QML_FILES
    QXActivityAction.qml
    QXActivityHeader.qml
    QXActivityView.qml
    QXAlert.qml
    QXBreakpointEditorView.qml
    QXBreakpointRowView.qml
    QXBreakpointsListView.qml
    QXDeleteButton.qml
    QXFloatingButton.qml
    QXFocusRing.qml
    QXFrostedBackdrop.qml
    QXIcon.qml
    QXListAnchor.qml
    QXModal.qml
    QXNavigationBar.qml
    QXNavigationStack.qml
    QXOverlayView.qml
    QXPageList.qml
    QXPresentationLayer.qml
    QXRequestDetailsRowView.qml
    QXRequestDetailsView.qml
    QXRequestListPage.qml
    QXRequestListView.qml
    QXRequestRowView.qml
    QXSaveField.qml
    QXScrollBar.qml
    QXSearchField.qml
    QXSeparator.qml
    QXSheet.qml
    QXShield.qml
    QXText.qml
    QXTextButton.qml
    QXTextField.qml
    QXTheme.qml
    QXToolButton.qml)
set_source_files_properties(QXTheme.qml PROPERTIES QT_QML_SINGLETON_TYPE TRUE)

set(QUORVIX_QML_SOURCES
    QXActivityViewController.h
    QXAppearance.cpp QXAppearance.h
    QXBackdrop.cpp QXBackdrop.h
    QXBodyLines.cpp QXBodyLines.h
    QXBreakpointEditorModel.cpp QXBreakpointEditorModel.h
    QXBreakpointsViewModel.cpp QXBreakpointsViewModel.h
    QXFrost.cpp QXFrost.h
    QXRequestDetailsViewModel.cpp QXRequestDetailsViewModel.h
    QXSymbolProvider.cpp QXSymbolProvider.h)

set(QUORVIX_SYMBOL_FILES
    symbols/antenna.radiowaves.left.and.right.svg
    symbols/arrow.up.forward.app.svg
    symbols/button.shadow.svg
    symbols/checkmark.svg
    symbols/chevron.down.svg
    symbols/chevron.left.svg
    symbols/chevron.right.svg
    symbols/curlybraces.svg
    symbols/doc.on.doc.svg
    symbols/doc.text.svg
    symbols/exclamationmark.triangle.svg
    symbols/flowchart.svg
    symbols/folder.svg
    symbols/magnifyingglass.svg
    symbols/minus.circle.fill.svg
    symbols/pause.circle.svg
    symbols/square.and.arrow.down.svg
    symbols/square.and.arrow.up.svg
    symbols/trash.svg
    symbols/xmark.circle.fill.svg
    symbols/xmark.svg)
