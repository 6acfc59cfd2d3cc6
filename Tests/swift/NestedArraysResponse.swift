struct Api0: Codable, Hashable {
    let x: Double
}
struct Api0A: Codable, Hashable {
    let y: Double
}
struct NestedArraysResponse: Codable, Hashable {
    let cells: [[Api0]]
    let cube: [[[Bool]]]
    let grid: [[Double]]
    let matrices: [[JSONValue]]
    let mixed: [[JSONValue]]
    let rows: [String?]
    let tiles: [[[Api0A]]]
}

enum JSONValue
