struct ScriptsSSeta: Codable, Hashable {
    let a: Double
}
struct Scriptsاسم: Codable, Hashable {
    let a: Double
}
struct नमस्ते: Codable, Hashable {
    let a: Double
}
struct Scripts𐐀𐐩: Codable, Hashable {
    let a: Double
}
struct ScriptsResponse: Codable, Hashable {
    let éTAT: Double
    let ßeta: ScriptsSSeta
    let имя: String
    let типДанных: String
    let اسم: Scriptsاسم
    let value٣اسم: Double
    let नमस्ते: [नमस्ते]
    let नमस्तेदुनिया: Double
    let 用户Id: Double
    let 𐐨𐐩: Scripts𐐀𐐩
    let value: Double
    let ok: Double

    enum CodingKeys: String, CodingKey {
        case éTAT = "ÉTAT"
        case типДанных = "тип_данных"
        case value٣اسم = "٣اسم"
        case नमस्तेदुनिया = "नमस्ते दुनिया"
        case 用户Id = "用户_id"
        case value = "🎉"
        case ok = "👍🏽ok"
    }
}
