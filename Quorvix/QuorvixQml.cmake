# The screens: their QML files, the classes that they are made with, and the symbols that they show.
set(QUORVIX_QML_FILES
    QXActivityAction.qml
    QXActivityHeader.qml
    QXActivityView.qml
    QXAlert.qml
    QXBreakpointEditorForm.qml
    QXBreakpointEditorView.qml
    QXBreakpointRowView.qml
    QXBreakpointsListView.qml
    QXConfirmationAction.qml
    QXConfirmationDialog.qml
    QXContextMenu.qml
    QXDecodedPayloadView.qml
    QXDeleteButton.qml
    QXDisclosureGroup.qml
    QXEditMenu.qml
    QXFloatingButton.qml
    QXFocusRing.qml
    QXFrostedBackdrop.qml
    QXIcon.qml
    QXListAnchor.qml
    QXLogTreeFailure.qml
    QXLogTreeList.qml
    QXLogTreeRow.qml
    QXLogTreeView.qml
    QXMenuColumn.qml
    QXMenuItem.qml
    QXModal.qml
    QXNavigationBar.qml
    QXNavigationStack.qml
    QXOverlayView.qml
    QXPage.qml
    QXPageList.qml
    QXPresentationLayer.qml
    QXRequestDetailsView.qml
    QXRequestListPage.qml
    QXRequestListView.qml
    QXRequestRowView.qml
    QXRequestSectionView.qml
    QXRoundButton.qml
    QXSaveField.qml
    QXScrollArea.qml
    QXScrollBar.qml
    QXSearchField.qml
    QXSectionTitle.qml
    QXSeparator.qml
    QXSheet.qml
    QXShield.qml
    QXSwitch.qml
    QXText.qml
    QXTextArea.qml
    QXTextBlock.qml
    QXTextButton.qml
    QXTextField.qml
    QXTextHandles.qml
    QXTextMenu.qml
    QXTheme.qml
    QXToolButton.qml
    QXValueRow.qml)
set_source_files_properties(QXTheme.qml PROPERTIES QT_QML_SINGLETON_TYPE TRUE)

set(QUORVIX_QML_SOURCES
    QXActivityViewController.h
    QXAppearance.cpp QXAppearance.h
    QXBackdrop.cpp QXBackdrop.h
    QXBreakpointEditorModel.cpp QXBreakpointEditorModel.h
    QXBreakpointsViewModel.cpp QXBreakpointsViewModel.h
    QXDecodedPayloadModel.cpp QXDecodedPayloadModel.h
    QXFocusFence.cpp QXFocusFence.h
    QXFrost.cpp QXFrost.h
    QXLogTreeViewModel.cpp QXLogTreeViewModel.h
    QXRequestDetailsViewModel.cpp QXRequestDetailsViewModel.h
    QXSymbolProvider.cpp QXSymbolProvider.h
    QXTextBoundaries.cpp QXTextBoundaries.h
    QXTextCanvas.cpp QXTextCanvas.h
    QXTextCell.cpp QXTextCell.h
    QXTextCommand.cpp QXTextCommand.h
    QXTextDocument.cpp QXTextDocument.h
    QXTextEditing.cpp QXTextEditing.h
    QXTextEditor.cpp QXTextEditor.h
    QXTextMove.cpp QXTextMove.h
    QXTextRowLayout.cpp QXTextRowLayout.h
    QXTextRows.cpp QXTextRows.h
    QXTextSelection.cpp QXTextSelection.h
    QXTextSurroundings.cpp QXTextSurroundings.h
    QXTextView.cpp QXTextView.h)

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
